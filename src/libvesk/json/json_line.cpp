// The only unit that reads JSON. Reading is strict: an instrument's author must hear about every
// misspelt field and every number out of range, instead of finding zeros on the operators' screens.
#include "libvesk/json/json_line.h"

#include <cmath>
#include <nlohmann/json.hpp>
#include <optional>
#include <set>
#include <utility>

#include "libvesk/json/json_record.h"
#include "libvesk/support/suggest.h"
#include "libvesk/support/util.h"

namespace {

using nlohmann::json;

std::string in_quotes(std::string_view name) {
    std::string text;
    JSONREC_append_text(&text, name);
    return text;
}

// The end of a complaint about a name that is none of the rows'.
template <class ROWS>
std::string meant(std::string_view wanted, const ROWS& rows) {
    std::vector<std::string_view> names;
    for (const auto& row : rows) {
        if constexpr (std::is_pointer_v<std::remove_cvref_t<decltype(row)>>)
            names.emplace_back(row->name);
        else
            names.emplace_back(row.name);
    }
    return SUGGEST_text(wanted, names);
}

// The bytes of a JSON text, one per character; none when a character has no byte.
std::optional<std::string> bytes_of(const std::string& utf8) {
    std::string bytes;
    for (std::size_t i = 0; i < utf8.size(); ++i) {
        const auto c = static_cast<unsigned char>(utf8[i]);
        if (c == 0 || c > 0xC3) return std::nullopt;
        bytes += c < 0x80 ? utf8[i] : static_cast<char>((c & 3) << 6 | (utf8[++i] & 0x3F));
    }
    return bytes;
}

template <class T>
BOOL read_integer(const json& value, T* number) {
    constexpr double EXACT = 9007199254740992.0;  // 2^53: every double up to here is what was written
    const auto take = [number](auto wide) {
        if (!std::in_range<T>(wide)) return FALSE;
        *number = static_cast<T>(wide);
        return TRUE;
    };
    if (value.is_number_unsigned()) return take(value.get<std::uint64_t>());
    if (value.is_number_integer()) return take(value.get<std::int64_t>());
    if (!value.is_number_float()) return FALSE;
    const auto d = value.get<double>();
    return std::trunc(d) == d && std::abs(d) <= EXACT && take(static_cast<std::int64_t>(d));
}

BOOL read_floating(const json& value, double* number) {
    if (value.is_number()) {
        *number = value.get<double>();
        return TRUE;
    }
    if (!value.is_string()) return FALSE;
    const auto& text = value.get_ref<const std::string&>();
    if (text == JSONREC_NAN) *number = std::nan("");
    if (text == JSONREC_INF) *number = HUGE_VAL;
    if (text == JSONREC_NEG_INF) *number = -HUGE_VAL;
    return text == JSONREC_NAN || text == JSONREC_INF || text == JSONREC_NEG_INF;
}

// Fills a record from a JSON object. Every function returns FALSE on the first thing that is wrong; the path
// to it is put together on the way out.
class record_reader {
  public:
    BOOL record(const json& object, const NETDSD_entry* dsd, char* at) {
        if (!object.is_object()) return wrong("expects an object");
        for (const auto& [name, value] : object.items()) {
            const NETDSD_field* f = NETDSD_field_by_name(dsd, name);
            if (f == nullptr)
                return wrong("unknown field " + in_quotes(name) + " in " + dsd->name +
                             meant(name, NETDSD_fields(dsd)));
            if (!field(value, *f, at + f->offset)) return inside(f->name);
        }
        return TRUE;
    }

    [[nodiscard]] std::string error() const { return path_.empty() ? reason_ : path_ + ": " + reason_; }

  private:
    BOOL field(const json& value, const NETDSD_field& f, char* at) {
        if (!JSONREC_is_list(f)) return element(value, f, at);
        if (!value.is_array() || value.size() > f.count) {
            return wrong("expects an array of at most " + std::to_string(f.count) + " elements");
        }
        for (std::size_t i = 0; i < value.size(); ++i) {
            if (!element(value[i], f, at + i * (f.size / f.count))) {
                return inside("[" + std::to_string(i) + "]");
            }
        }
        return TRUE;
    }

    BOOL element(const json& value, const NETDSD_field& f, char* at) {
        if (f.ft == NETDSD_FT_BIN) return record(value, f.nested, at);
        if (NETDSD_is_text(f.ft)) return text(value, f, at);
        return NETDSD_visit_type(f.ft, [&]<class T>(std::type_identity<T>) {
            if constexpr (std::is_same_v<T, BOOL>) {
                return boolean(value, at);
            } else if constexpr (std::is_same_v<T, char>) {
                return character(value, at);
            } else if constexpr (std::is_floating_point_v<T>) {
                return floating<T>(value, at);
            } else {
                return integer<T>(value, at);
            }
        });
    }

    BOOL boolean(const json& value, char* at) {
        if (!value.is_boolean()) return wrong("expects true or false");
        NETDSD_store<BOOL>(at, value.get<bool>());
        return TRUE;
    }

    BOOL text(const json& value, const NETDSD_field& f, char* at) {
        if (!value.is_string()) return wrong("expects a text");
        const auto bytes = bytes_of(value.get_ref<const std::string&>());
        if (!bytes) return wrong("holds a character that cannot be sent");
        if (bytes->size() > NETDSD_text_capacity(f)) {
            return wrong("longer than " + std::to_string(NETDSD_text_capacity(f)) + " characters");
        }
        std::memset(at, 0, f.size);
        std::memcpy(at, bytes->data(), bytes->size());
        return TRUE;
    }

    BOOL character(const json& value, char* at) {
        if (!value.is_string()) return wrong("expects a text of one character");
        const auto bytes = bytes_of(value.get_ref<const std::string&>());
        if (!bytes || bytes->size() > 1) return wrong("expects a text of one character");
        *at = bytes->empty() ? '\0' : bytes->front();
        return TRUE;
    }

    template <class T>
    BOOL integer(const json& value, char* at) {
        T number{};
        if (!read_integer(value, &number)) {
            return wrong("expects an integer from " + std::to_string(std::numeric_limits<T>::min()) + " to " +
                         std::to_string(std::numeric_limits<T>::max()));
        }
        NETDSD_store<T>(at, number);
        return TRUE;
    }

    // Only a double has a value that means missing.
    template <class T>
    BOOL floating(const json& value, char* at) {
        double number = VESK_MISSING;
        if (!(std::is_same_v<T, double> && value.is_null()) && !read_floating(value, &number)) {
            return wrong(R"(expects a number, null, "NaN", "Inf" or "-Inf")");
        }
        if (std::isfinite(number) && std::abs(number) > double{std::numeric_limits<T>::max()}) {
            return wrong("expects a number of single precision");
        }
        NETDSD_store<T>(at, static_cast<T>(number));
        return TRUE;
    }

    BOOL wrong(std::string reason) {
        reason_ = std::move(reason);
        return FALSE;
    }

    BOOL inside(const std::string& name) {
        path_ = path_.empty() || path_.front() == '[' ? name + path_ : name + "." + path_;
        return FALSE;
    }

    std::string reason_;
    std::string path_;
};

// Reads the members of a line one by one; the first that is wrong leaves its reason.
class line_reader {
  public:
    line_reader(const json& line, JSONLINE_message* message, std::string* error)
        : line_(line), message_(message), error_(error) {}

    BOOL read() {
        if (!line_.is_object()) return wrong("a line is a JSON object");
        return known_keys() && origin() && message() && destination() && flags() && record() && payload();
    }

  private:
    BOOL known_keys() {
        static const std::set<std::string_view> known = {"time", "src",    "dest",   "flags",
                                                         "msg",  "record", "payload"};
        for (const auto& [name, value] : line_.items()) {
            if (!known.contains(name)) return wrong("unknown key " + in_quotes(name));
        }
        return TRUE;
    }

    BOOL origin() {
        if (const json* time = given("time"); time != nullptr && !read_floating(*time, &message_->time)) {
            return wrong("\"time\" is a number");
        }
        return text("src", &message_->src);
    }

    BOOL message() {
        std::string name;
        if (given("msg") == nullptr) return wrong("no \"msg\"");
        if (!text("msg", &name)) return FALSE;
        message_->msg = NETMSG_by_name(name);
        return message_->msg != nullptr ||
               wrong("unknown message " + in_quotes(name) + meant(name, NETMSG_all()));
    }

    BOOL destination() {
        std::string& dest = message_->dest;
        if (!text("dest", &dest)) return FALSE;
        return dest.empty() || UTIL_valid_source_name(dest) || wrong("\"dest\" is no name of an instrument");
    }

    BOOL flags() {
        message_->flags = message_->dest.empty() ? FRAME_TO_ALL : 0;
        const json* value = given("flags");
        return value == nullptr || read_integer(*value, &message_->flags) ||
               wrong("\"flags\" is an integer from 0 to 4294967295");
    }

    BOOL record() {
        const NETMSG_entry* msg = message_->msg;
        std::string name;
        if (!text("record", &name)) return FALSE;
        if (given("payload") == nullptr) return name.empty() || wrong("a \"record\" without \"payload\"");
        message_->dsd = name.empty() ? msg->dsd : NETDSD_by_name(name);
        if (message_->dsd == nullptr) {
            return wrong(name.empty() ? std::string(msg->name) + " needs a \"record\" with its \"payload\""
                                      : "unknown record " + in_quotes(name) + meant(name, NETDSD_all()));
        }
        return NETMSG_accepts(msg, message_->dsd) ||
               wrong(std::string(msg->name) + " carries " + msg->ds_tie + ", not " + name);
    }

    BOOL payload() {
        const json* value = given("payload");
        if (value == nullptr) return TRUE;
        message_->payload.resize(message_->dsd->total_size);
        NETDSD_set_defaults(message_->dsd, message_->payload.data());
        record_reader reader;
        if (!value->is_object()) return wrong("\"payload\" is an object");
        return reader.record(*value, message_->dsd, message_->payload.data()) || wrong(reader.error());
    }

    // A member that is there and not null.
    [[nodiscard]] const json* given(const char* name) const {
        const auto found = line_.find(name);
        return found != line_.end() && !found->is_null() ? &*found : nullptr;
    }

    BOOL text(const char* name, std::string* to) {
        const json* value = given(name);
        if (value == nullptr) return TRUE;
        if (!value->is_string()) return wrong(in_quotes(name) + " is a text");
        *to = value->get<std::string>();
        return TRUE;
    }

    BOOL wrong(std::string reason) {
        *error_ = std::move(reason);
        return FALSE;
    }

    const json& line_;
    JSONLINE_message* message_;
    std::string* error_;
};

// Notices a member that stands twice in one object: the library would silently keep the last.
class duplicate_finder {
  public:
    bool operator()(json::parse_event_t event, const json& parsed) {
        if (event == json::parse_event_t::object_start) objects_.emplace_back();
        if (event == json::parse_event_t::object_end) objects_.pop_back();
        if (event == json::parse_event_t::key) {
            const auto& name = parsed.get_ref<const std::string&>();
            if (!objects_.back().insert(name).second && duplicate_.empty()) duplicate_ = in_quotes(name);
        }
        return true;
    }
    [[nodiscard]] const std::string& duplicate() const { return duplicate_; }

  private:
    std::vector<std::set<std::string>> objects_;
    std::string duplicate_;
};

BOOL parse(std::string_view line, json* parsed, std::string* error) {
    duplicate_finder finder;
    try {
        *parsed = json::parse(line, [&](int, json::parse_event_t event, json& value) {
            return finder(event, std::as_const(value));
        });
    } catch (const json::parse_error& e) {
        *error = "no JSON: wrong at byte " + std::to_string(e.byte);
        return FALSE;
    } catch (const json::exception&) {
        *error = "no JSON: a number beyond every range";
        return FALSE;
    }
    if (finder.duplicate().empty()) return TRUE;
    *error = finder.duplicate() + " stands twice";
    return FALSE;
}

}  // namespace

void JSONLINE_write(std::string* out, const VESKMSG_proc_msg* pm, FTIME time) {
    *out += "{\"time\":";
    JSONREC_append_double(out, time);
    *out += ",\"src\":";
    JSONREC_append_text(out, pm->src_name != nullptr ? pm->src_name : "");
    *out += ",\"dest\":";
    JSONREC_append_text(out, pm->dest_name != nullptr ? pm->dest_name : "");
    *out += ",\"flags\":" + std::to_string(pm->flags);
    *out += ",\"msg\":";
    JSONREC_append_text(out, pm->msg->name);
    if (pm->pds == nullptr || pm->dsd == nullptr) {
        *out += ",\"record\":null,\"payload\":null}\n";
        return;
    }
    *out += ",\"record\":";
    JSONREC_append_text(out, pm->dsd->name);
    *out += ",\"payload\":";
    JSONREC_append_record(out, pm->dsd, pm->pds);
    *out += "}\n";
}

BOOL JSONLINE_read(std::string_view line, JSONLINE_message* message, std::string* error) {
    *message = JSONLINE_message();
    json parsed;
    return parse(line, &parsed, error) && line_reader(parsed, message, error).read();
}
