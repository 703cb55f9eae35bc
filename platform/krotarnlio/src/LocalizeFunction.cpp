#include "LocalizeFunction.h"

#include "krocore/Localizer.h"
#include "krocore/String.h"
#include "orrin/error.h"
#include "orrin/functions.h"

#include <stdexcept>

namespace krotarnlio {

using orrin::any_regular_t;
using orrin::name_t;

namespace {

// The text behind a key, in the user's language.
any_regular_t Localize(const any_regular_t& arguments) {
    const auto& key = orrin::positional_arguments(arguments, 1)[0].get<std::string>();
    return krocore::ToStdString(krocore::Localize(key));
}

} // namespace

name_t LocalizeName() {
    static const name_t name("localize");
    return name;
}

WithLocalize::WithLocalize(orrin::virtual_machine_t& machine) : fMachine(machine), fClient(machine.function_lookup()) {
    fMachine.set_function_lookup([client = fClient](name_t name, const any_regular_t& arguments) {
        if (name == LocalizeName()) return Localize(arguments);
        if (client) return client(name, arguments);
        throw std::invalid_argument("there is no function " + orrin::in_quotes(name.text()));
    });
}

} // namespace krotarnlio
