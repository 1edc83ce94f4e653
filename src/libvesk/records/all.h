// Every wire record there is. Only the tables (netmsg.cpp, netdsd.cpp) and programs that treat all records
// alike include this; a unit that knows its records includes their header.
#pragma once

#include "libvesk/records/carbon.h"
#include "libvesk/records/ccn.h"
#include "libvesk/records/clap3w.h"
#include "libvesk/records/common_neph.h"
#include "libvesk/records/cpc.h"
#include "libvesk/records/extinction.h"
#include "libvesk/records/genericpid.h"
#include "libvesk/records/io.h"
#include "libvesk/records/log.h"
#include "libvesk/records/loopctl.h"
#include "libvesk/records/messaging.h"
#include "libvesk/records/neph.h"
#include "libvesk/records/psap.h"
#include "libvesk/records/server.h"
#include "libvesk/records/sizers.h"
#include "libvesk/records/verticalprofile.h"

// Records that no message is tied to and no other record nests, yet that may travel with an untied message:
// one X(NET_...) each.
#define NETDSD_UNTIED_LIST(X)
