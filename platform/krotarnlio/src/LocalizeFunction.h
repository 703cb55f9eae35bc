#pragma once

#include "orrin/virtual_machine.h"

namespace krotarnlio {

// "localize": the function that every layout has, whatever its user installs.
orrin::name_t LocalizeName();

// Adds it to the functions of a machine for as long as this lives.
class WithLocalize {
public:
    explicit WithLocalize(orrin::virtual_machine_t& machine);
    ~WithLocalize() { fMachine.set_function_lookup(fClient); }
    WithLocalize(const WithLocalize&) = delete;
    WithLocalize& operator=(const WithLocalize&) = delete;

private:
    orrin::virtual_machine_t& fMachine;
    orrin::function_lookup_t fClient;
};

} // namespace krotarnlio
