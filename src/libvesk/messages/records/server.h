// Records of the server itself: who announces what.
#pragma once

#include "libvesk/messages/netdsd.h"

inline constexpr std::size_t NET_SERVER_TAGS = 8;

#pragma pack(push, 4)
struct NET_SERVER_InstrumentTag {
    STRING<32> tag;
};

struct NET_SERVER_InstrumentInfo {
    STRING<32> type;          // the kind, matched exactly against the table of displays
    STRING<32> display_name;  // for people
    char id_ch;               // hot key and logging indicator, 0 for none
    NET_SERVER_InstrumentTag tags[NET_SERVER_TAGS];  // entries after the last are empty
};
#pragma pack(pop)

NETDSD_RECORD(NET_SERVER_InstrumentTag, 32, NETDSD_MEMBER(tag));
NETDSD_RECORD(NET_SERVER_InstrumentInfo, 321, NETDSD_MEMBER(type), NETDSD_MEMBER(display_name),
              NETDSD_MEMBER(id_ch), NETDSD_MEMBER(tags));
