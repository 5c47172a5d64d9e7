// SPDX-License-Identifier: Apache-2.0
#ifndef PRIVACY_INDICATOR_VERSION_H
#define PRIVACY_INDICATOR_VERSION_H

/** The library's version, MAJOR.MINOR.PATCH. The build reads it from this line, too. */
#define PRIVACY_INDICATOR_VERSION "1.0.0"

#endif // PRIVACY_INDICATOR_VERSION_H
