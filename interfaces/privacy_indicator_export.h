// SPDX-License-Identifier: Apache-2.0
#ifndef PRIVACY_INDICATOR_EXPORT_H
#define PRIVACY_INDICATOR_EXPORT_H

/**
 * What holds for all that the library exports, and is not repeated at each class:
 *
 * Exceptions. None leaves a noexcept function, as most are: a container that cannot get memory, or a callback that
 * throws, ends the process. A stub's OnRemoteRequest, which runs on the platform's threads, passes on what its
 * operation throws, and std::bad_alloc; copies and setters of records may throw that, too. Where a comment says that a
 * lack of memory is reported, by a code or by null, that holds for the object itself, not for what the platform adds to
 * it.
 *
 * Records. The classes that derive from Parcelable are values. They hold no lock: several threads may read one at once,
 * but no thread may read one that another one writes. The library carries every number and text unchanged and checks no
 * range, unless a comment says otherwise. A record is copied member by member; it declares its copy operations, because
 * on a device an implicit move would also move the reference count of the base class. Each has these three operations:
 *
 * - Marshalling appends the fields that docs/wire_format.md lists. It returns false if one does not fit; the fields
 *   before it stay in the parcel.
 * - Unmarshalling reads them. It returns a new record, which the caller owns and deletes; or null if a field is missing
 *   or malformed, or if there is no memory for the record.
 * - ToString returns the record as one line of text, for logs.
 */

/** Marks what the library exports: it is compiled with everything else hidden. */
#define PRIVACY_INDICATOR_EXPORT __attribute__((visibility("default")))

#endif // PRIVACY_INDICATOR_EXPORT_H
