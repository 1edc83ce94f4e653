// Records of the data logger.
#pragma once

#include "libvesk/messages/netdsd.h"

// Bits of NET_LOG_MonitorMessage::flags.
inline constexpr BYTE NET_LOG_MONITOR_ERROR = 1;  // an error for every operator to see
inline constexpr BYTE NET_LOG_MONITOR_NOTE = 2;   // a note that an operator entered
inline constexpr NETDSD_meaning NET_LOG_MONITOR_FLAGS[] = {{NET_LOG_MONITOR_ERROR, "error", NETDSD_FAULT},
                                                           {NET_LOG_MONITOR_NOTE, "note", NETDSD_NOTE}};

#pragma pack(push, 4)
struct NET_LOG_Info {
    BOOL logging;
};

struct NET_LOG_SetState {
    BOOL enable;
};

struct NET_LOG_SwitchFiles {
    TIME32 switchtime;
};

struct NET_LOG_MonitorMessage {
    BYTE flags;
    FTIME msgtime;
    STRING<8192> msg;
};

struct NET_LOG_AVG_Flush {
    FTIME flush_until;
};

struct NET_LOG_AVG_Contamination {
    BOOL contaminated;
    FTIME flush_until;
};

struct NET_LOG_AVG_ContamFlags {
    WORD flags;
};

struct NET_LOG_AVG_Bypass {
    BOOL bypassed;
    FTIME flush_until;
};
#pragma pack(pop)

NETDSD_RECORD(NET_LOG_Info, 1, NETDSD_MEMBER(logging, "the server logs this instrument"));
NETDSD_RECORD(NET_LOG_SetState, 1, NETDSD_MEMBER(enable, "whether to log it"));
NETDSD_RECORD(NET_LOG_SwitchFiles, 4, NETDSD_TIME(switchtime, "when to begin new data files"));
NETDSD_RECORD(NET_LOG_MonitorMessage, 8204,
    NETDSD_MEMBER(flags, UNIT_bits, "what the line is").bits(NET_LOG_MONITOR_FLAGS),
    NETDSD_TIME(msgtime, "time of the line"),
    NETDSD_MEMBER(msg, "the line"));
NETDSD_RECORD(NET_LOG_AVG_Flush, 8, NETDSD_TIME(flush_until, "until when averaging pauses"));
NETDSD_RECORD(NET_LOG_AVG_Contamination, 12,
    NETDSD_MEMBER(contaminated, "the sampled air is contaminated"),
    NETDSD_TIME(flush_until, "until when averaging pauses"));
NETDSD_RECORD(NET_LOG_AVG_ContamFlags, 2, NETDSD_MEMBER(flags, UNIT_bits, "causes of contamination"));
NETDSD_RECORD(NET_LOG_AVG_Bypass, 12,
    NETDSD_MEMBER(bypassed, "the station is bypassed"),
    NETDSD_TIME(flush_until, "until when averaging pauses"));
