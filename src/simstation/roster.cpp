// Making the list of instruments from the table and what was asked for.
#include "simstation/roster.h"

#include <algorithm>
#include <charconv>

#include "libvesk/support/util.h"

namespace {

constexpr int MOST_OF_A_KIND = 50;
constexpr std::string_view IDENTIFIERS = "123456789abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0";

struct request {
    std::string type;
    std::string name;  // "" for the kind's own
    int count = 1;
};

// FALSE when the count is none.
BOOL parse_request(std::string_view item, request* r) {
    if (const auto star = item.rfind('*'); star != std::string_view::npos) {
        const std::string_view digits = item.substr(star + 1);
        const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), r->count);
        if (error != std::errc{} || end != digits.data() + digits.size()) return FALSE;
        if (r->count < 1 || r->count > MOST_OF_A_KIND) return FALSE;
        item = item.substr(0, star);
    }
    const auto equals = item.find('=');
    r->type = item.substr(0, equals);
    if (equals != std::string_view::npos) r->name = item.substr(equals + 1);
    return TRUE;
}

BOOL has_name(const std::vector<SIM_member>& members, std::string_view name) {
    return std::any_of(members.begin(), members.end(), [&](const SIM_member& m) { return m.name == name; });
}

// The name itself when it is free, else the same with its number counted on: S11, S12, ...
std::string free_name(const std::vector<SIM_member>& members, std::string name) {
    const std::size_t digits = name.find_last_not_of("0123456789") + 1;
    const std::string stem = name.substr(0, digits);
    int number = 1;
    std::from_chars(name.data() + digits, name.data() + name.size(), number);
    while (has_name(members, name))
        name = stem + std::to_string(++number);
    return name;
}

BOOL id_is_taken(const std::vector<SIM_member>& members, char id) {
    const auto in_table = [id](const SIM_kind& kind) { return kind.id_ch == id; };
    const auto in_use = [id](const SIM_member& m) { return m.id_ch == id; };
    return std::any_of(SIM_kinds().begin(), SIM_kinds().end(), in_table) ||
           std::any_of(members.begin(), members.end(), in_use);
}

// The kind's own for its first instrument; 0, none, when all are used up.
char free_id(const std::vector<SIM_member>& members, const SIM_kind& kind, int which) {
    if (which == 1) return kind.id_ch;
    const auto found = std::find_if(IDENTIFIERS.begin(), IDENTIFIERS.end(),
                                    [&](char id) { return !id_is_taken(members, id); });
    return found != IDENTIFIERS.end() ? *found : '\0';
}

void add_one(const SIM_kind& kind, const std::string& name, std::vector<SIM_member>* members) {
    const auto of_kind = [&](const SIM_member& m) { return m.kind == &kind; };
    const int which = static_cast<int>(std::count_if(members->begin(), members->end(), of_kind)) + 1;
    std::string title = kind.display_name;
    if (which > 1) title += " " + std::to_string(which);
    members->push_back({&kind, name, title, free_id(*members, kind, which)});
}

// The fault of the request, "" for none.
std::string add_requested(std::string_view item, std::vector<SIM_member>* members) {
    request r;
    if (!parse_request(item, &r)) return "a count from 1 to " + std::to_string(MOST_OF_A_KIND) + " follows *";
    const SIM_kind* const kind = SIM_kind_by_type(r.type);
    if (kind == nullptr) return "no such kind (see --list)";
    const BOOL named = !r.name.empty();
    if (!named && item.find('=') != std::string_view::npos) return "a source name follows =";
    if (named && !UTIL_valid_source_name(r.name)) return "no valid source name";
    if (named && has_name(*members, r.name)) return "the name is used twice";
    for (int i = 0; i < r.count; ++i)
        add_one(*kind, free_name(*members, named ? r.name : kind->name), members);
    return "";
}

}  // namespace

std::vector<SIM_member> SIM_roster(std::string_view list, std::vector<std::string>* errors) {
    std::vector<SIM_member> members;
    if (list.empty()) {
        for (const SIM_kind& kind : SIM_kinds()) {
            if (!kind.on_demand) add_one(kind, kind.name, &members);
        }
        return members;
    }
    for (std::size_t at = 0; at <= list.size();) {
        const std::size_t end = std::min(list.find(',', at), list.size());
        const std::string_view item = list.substr(at, end - at);
        const std::string wrong = add_requested(item, &members);
        if (!wrong.empty()) errors->push_back("\"" + std::string(item) + "\": " + wrong);
        at = end + 1;
    }
    return members;
}
