// Records of the data logger.
#pragma once

#include "libvesk/messages/netdsd.h"

// Bits of NET_LOG_MonitorMessage::flags.
inline constexpr BYTE NET_LOG_MONITOR_ERROR = 1;  // an error for every operator to see
inline constexpr BYTE NET_LOG_MONITOR_NOTE = 2;   // a note that an operator entered

#pragma pack(push, 4)
struct NET_LOG_Info {
    BOOL logging;  // the server logs this instrument
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

NETDSD_RECORD(NET_LOG_Info, 1, NETDSD_MEMBER(logging));
NETDSD_RECORD(NET_LOG_SetState, 1, NETDSD_MEMBER(enable));
NETDSD_RECORD(NET_LOG_SwitchFiles, 4, NETDSD_TIME(switchtime));
NETDSD_RECORD(NET_LOG_MonitorMessage, 8204, NETDSD_MEMBER(flags), NETDSD_TIME(msgtime), NETDSD_MEMBER(msg));
NETDSD_RECORD(NET_LOG_AVG_Flush, 8, NETDSD_TIME(flush_until));
NETDSD_RECORD(NET_LOG_AVG_Contamination, 12, NETDSD_MEMBER(contaminated), NETDSD_TIME(flush_until));
NETDSD_RECORD(NET_LOG_AVG_ContamFlags, 2, NETDSD_MEMBER(flags));
NETDSD_RECORD(NET_LOG_AVG_Bypass, 12, NETDSD_MEMBER(bypassed), NETDSD_TIME(flush_until));
