// SPDX-License-Identifier: Apache-2.0
#ifndef PRIVACY_INDICATOR_EXPORT_H
#define PRIVACY_INDICATOR_EXPORT_H

/**
 * What holds for all that the library exports, and is not repeated at each class:
 *
 * Exceptions. None leaves the library: memory that a container cannot find, or a caller's callback that throws, ends
 * the process. Where a class says that a lack of memory is reported, by a code or by null, the process lives on.
 *
 * Records. The classes that derive from Parcelable are values. They are copied member by member and hold no lock:
 * several threads may read one at once, but nobody may read one while it is written. The library carries every number
 * and text unchanged and checks no range, unless it is said otherwise.
 */

/** Marks what the library exports: it is compiled with everything else hidden. */
#define PRIVACY_INDICATOR_EXPORT __attribute__((visibility("default")))

#endif // PRIVACY_INDICATOR_EXPORT_H
