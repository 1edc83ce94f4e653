// The record of operators' free-text messages.
#pragma once

#include "libvesk/messages/netdsd.h"

#pragma pack(push, 4)
struct NETDS_MESSAGE_OneMessage {
    FTIME time_sent;
    STRING<2048> contents;
};
#pragma pack(pop)

NETDSD_RECORD(NETDS_MESSAGE_OneMessage, 2056,
    NETDSD_TIME(time_sent, "when it was sent"),
    NETDSD_MEMBER(contents, "the message"));
