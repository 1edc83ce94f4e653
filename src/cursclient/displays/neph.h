// The private record of the three-wavelength nephelometer's display, which its parameter dialog reads too.
#pragma once

#include "cursclient/kit/neph_common.h"

struct NEPH_prv_data : SPANCHECK_head {
    NET_NEPH_Avg avg;
    NET_NEPH_Instant instant;
    NET_NEPH_Zero zero;
    NET_NEPH_ZeroSchedule zero_schedule;
    NET_NEPH_Modes modes;
    NET_NEPH_Config config;  // as the instrument last reported it
    NET_NEPH_Status status;
    int display_mode;  // INSTDISP_mode
    BOOL display_counts;
};

// The parameter dialog of that display (neph_params.cpp), once the password was given.
void NEPH_open_parameters(NEPH_prv_data* pd, DWORD uid);
