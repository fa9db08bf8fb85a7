/*
 * Version of the library and its headers: the one place where it stands. The major number is that of the interface: it
 * grows when a host has to be compiled anew.
 */
#ifndef KESTRUNE_VERSION_H
#define KESTRUNE_VERSION_H

#define KESTRUNE_VERSION_MAJOR 0
#define KESTRUNE_VERSION_MINOR 2
#define KESTRUNE_VERSION_PATCH 0

/* For comparisons by the preprocessor: 0.2.0 is 200. */
#define KESTRUNE_VERSION_NUMBER \
  (KESTRUNE_VERSION_MAJOR * 10000 + KESTRUNE_VERSION_MINOR * 100 + KESTRUNE_VERSION_PATCH)

#define KESTRUNE_VERSION_TEXT(number) #number
#define KESTRUNE_VERSION_JOIN(major, minor, patch) \
  KESTRUNE_VERSION_TEXT(major) "." KESTRUNE_VERSION_TEXT(minor) "." KESTRUNE_VERSION_TEXT(patch)

/* "0.2.0" */
#define KESTRUNE_VERSION \
  KESTRUNE_VERSION_JOIN(KESTRUNE_VERSION_MAJOR, KESTRUNE_VERSION_MINOR, KESTRUNE_VERSION_PATCH)

#endif
