#include "Values.h"

#include "krocore/Localizer.h"

#include <cmath>
#include <stdexcept>
#include <string>

namespace krotarnlio {

krocore::string16 TextOf(const orrin::any_regular_t& value) {
    const std::string& text = value.get<std::string>();
    return text.starts_with("$$$/") ? krocore::Localize(text) : krocore::ToUTF16(text);
}

unsigned WholeNumberOf(const orrin::any_regular_t& value, unsigned most) {
    const double number = value.get<double>();
    if (!(number >= 0 && number <= most) || number != std::floor(number))
        throw std::invalid_argument("needs a whole number from 0 to " + std::to_string(most));
    return static_cast<unsigned>(number);
}

bool EndsWithColon(std::u16string_view text) {
    return text.ends_with(u':') || text.ends_with(u'\uFF1A'); // the full-width colon of East Asian texts
}

} // namespace krotarnlio
