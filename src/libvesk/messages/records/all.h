// Every wire record there is. Only the tables (netmsg.cpp, netdsd.cpp) and programs that treat all records
// alike include this; a unit that knows its records includes their header.
#pragma once

#include "libvesk/messages/records/bestups.h"
#include "libvesk/messages/records/carbon.h"
#include "libvesk/messages/records/ccn.h"
#include "libvesk/messages/records/clap3w.h"
#include "libvesk/messages/records/common_neph.h"
#include "libvesk/messages/records/cpc.h"
#include "libvesk/messages/records/extinction.h"
#include "libvesk/messages/records/genericpid.h"
#include "libvesk/messages/records/hygrometer.h"
#include "libvesk/messages/records/io.h"
#include "libvesk/messages/records/log.h"
#include "libvesk/messages/records/loopctl.h"
#include "libvesk/messages/records/messaging.h"
#include "libvesk/messages/records/neph.h"
#include "libvesk/messages/records/psap.h"
#include "libvesk/messages/records/server.h"
#include "libvesk/messages/records/sizers.h"
#include "libvesk/messages/records/tsitmf.h"
#include "libvesk/messages/records/verticalprofile.h"

// Records that no message is tied to and no other record nests, yet that may travel with an untied message:
// one X(NET_...) each.
#define NETDSD_UNTIED_LIST(X)
