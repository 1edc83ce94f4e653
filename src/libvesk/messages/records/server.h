// Records of the server itself: who announces what.
#pragma once

#include "libvesk/messages/netdsd.h"

inline constexpr std::size_t NET_SERVER_TAGS = 8;

#pragma pack(push, 4)
struct NET_SERVER_InstrumentTag {
    STRING<32> tag;
};

struct NET_SERVER_InstrumentInfo {
    STRING<32> type;
    STRING<32> display_name;
    char id_ch;
    NET_SERVER_InstrumentTag tags[NET_SERVER_TAGS];
};
#pragma pack(pop)

NETDSD_RECORD(NET_SERVER_InstrumentTag, 32, NETDSD_MEMBER(tag, "by which displays choose among instruments"));
NETDSD_RECORD(NET_SERVER_InstrumentInfo, 321,
    NETDSD_MEMBER(type, "kind of display, exactly as in the table of kinds"),
    NETDSD_MEMBER(display_name, "title of the window"),
    NETDSD_MEMBER(id_ch, "hot key and logging indicator, none for no key"),
    NETDSD_MEMBER(tags, "entries after the last are empty"));
