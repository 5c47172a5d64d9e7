// SPDX-License-Identifier: Apache-2.0
#ifndef PRIVACY_INDICATOR_EXPORT_H
#define PRIVACY_INDICATOR_EXPORT_H

/** Marks what the library exports: it is compiled with everything else hidden. */
#define PRIVACY_INDICATOR_EXPORT __attribute__((visibility("default")))

#endif // PRIVACY_INDICATOR_EXPORT_H
