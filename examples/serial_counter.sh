#!/bin/bash
# A driver in shell: the counter of serial_counter.cpp, through vesk.peer.
#
#   serial_counter.sh NAME PORT
name=$1
port=$2
silence=3 # seconds without a reading: the counter does not answer

say() { printf '{"msg":"%s","flags":%d,"payload":%s}\n' "$@"; }
number='-?[0-9]+(\.[0-9]+)?'
reading="^($number),($number),($number),(FULL|NOTFULL)\$"

report() {
    while :; do
        if IFS= read -r -t $silence line; then
            if [[ ${line%$'\r'} =~ $reading ]]; then
                low=$([[ ${BASH_REMATCH[7]} == FULL ]] && echo 0 || echo 2)
                say MSG_CPC_3010_STATUS 7 '{"have_comms":true,"flags":'"$low"'}'
                say MSG_CPC_3010_INSTANT 1 '{"concentration":'"${BASH_REMATCH[1]}"',"T_saturator":'"${BASH_REMATCH[3]}"',"T_condenser":'"${BASH_REMATCH[5]}"'}'
            else
                say MSG_LOG_MONITOR 1 '{"flags":1,"msg":"'"$name"': not a reading"}'
            fi
        elif (($? > 128)); then
            say MSG_CPC_3010_STATUS 7 '{"have_comms":false}'
        else
            return 1 # the port is gone
        fi
    done
}

answer() {
    while IFS= read -r line; do
        [[ $line =~ \"dest\":\"($name)?\".*\"MSG_LOG_SET_STATE\".*\"enable\":(true|false) ]] &&
            say MSG_LOG_INFO 7 '{"logging":'"${BASH_REMATCH[2]}"'}'
    done
}

coproc PEER { exec vesk.peer --as "$name"; }
exec 3>&"${PEER[1]}" 4<&"${PEER[0]}"
children=("$PEER_PID")
trap 'kill "${children[@]}"' EXIT

stty -F "$port" 9600 raw -echo clocal || exit 2
say MSG_SERVER_INSTRUMENTINFO 7 '{"type":"cpc_3010","display_name":"Counter","id_ch":"J","tags":[{"tag":"cpc"}]}' >&3
say MSG_CPC_3010_STATUS 7 '{"have_comms":false}' >&3
answer <&4 >&3 &
children+=($!)
report <"$port" >&3
