/**
 * \file
 * What the plug-in is registered with, stated once for its two readers: the C++ code that answers
 * at global set-up, and the resource that hosts read before they call anything. The resource
 * compiler knows no C++, hence plain macros; the suffix L makes a number 4 bytes wide there.
 */
#ifndef TARVO_ENTRY_REGISTRATION_H
#define TARVO_ENTRY_REGISTRATION_H

/**
 * A name of another length needs another length byte, size and filling in
 * plugin/entry/windows/pipl.rc. The entry point's name also stands in the lists of exports beside
 * it, and the match name in host/match_name.h and companion.h.
 */
#define TARVO_DISPLAY_NAME "Tarvo_overlaps_manager"
#define TARVO_CATEGORY "QEZ"
#define TARVO_MATCH_NAME "QEZ_Tarvo_renderer"
#define TARVO_ENTRY_POINT "EntryPointFunc"

/**
 * The version that hosts compare, 2.0.0 in development, packed. It says which parameters and saved
 * data the effect has and goes up with those alone, so that it is no copy of the number of a
 * release, which stands in CMakeLists.txt.
 */
#define TARVO_HOST_VERSION 0x00100000L

/** The host takes the flags for what the code was written for: one without the other misbehaves. */
#define TARVO_OUT_FLAGS 0x04001200L
#define TARVO_OUT_FLAGS_2 0L

#endif /* TARVO_ENTRY_REGISTRATION_H */
