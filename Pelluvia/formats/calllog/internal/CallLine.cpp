#include <Pelluvia/formats/calllog/internal/CallLine.h>

#include <Pelluvia/formats/calllog/internal/CallLineBuilder.h>

#include <algorithm>

namespace pelluvia {

std::optional<CallLineFault> CallLine::parse(std::string_view line) {
    fields_.fill(std::nullopt);
    CallLineBuilder builder(*this);
    nlohmann::json::sax_parse(line.begin(), line.end(), &builder);
    return builder.fault();
}

bool CallLine::add(CallField field, Value value) {
    std::optional<Value> &place = fields_[static_cast<std::size_t>(field)];
    if (place) {
        return false;
    }
    place = std::move(value);
    return true;
}

} // namespace pelluvia
