// Payloads off the wire: any bytes are clean after one cleaning, and cleaning again changes nothing. The
// first two bytes of an input choose the message type whose record the rest is.
#include <cstdint>
#include <cstdlib>
#include <vector>

#include "../support/records.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size < 2) return 0;
    const NETMSG_entry* msg = NETMSG_by_type((data[0] | data[1] << 8) % NETMSG_COUNT);
    if (msg->dsd == nullptr) return 0;
    std::vector<char> record(msg->dsd->total_size, static_cast<char>(data[size - 1]));
    std::copy_n(data + 2, std::min(size - 2, record.size()), record.begin());
    NETDSD_sanitize(msg->dsd, record.data());
    if (!is_clean(msg->dsd, record.data())) std::abort();
    const std::vector<char> once = record;
    NETDSD_sanitize(msg->dsd, record.data());
    if (record != once) std::abort();
    return 0;
}
