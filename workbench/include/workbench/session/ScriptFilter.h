#pragma once

#include "kroaudiofilterhost/AudioFilter.h"
#include "kroaudiofilterhost/AudioFilterParameterInfo.h"

#include <memory>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace workbench {

// The effect behind a panel of scripts that belongs to no effect: its parameters are the sheet's inputs, and sound
// passes as it is. User-interface thread.
class ScriptFilter final : public kroaudiofilterhost::AudioFilter {
public:
    // More than any panel has.
    static constexpr std::size_t kMostParameters = 256;

    // The name of the scripts' resources.
    explicit ScriptFilter(std::string scripts);
    ~ScriptFilter() override;

    const std::string& Scripts() const noexcept { return fScripts; }
    // How many parameters there are, and the values of those that have not been set yet. At most kMostParameters.
    void SetDefaults(std::span<const float> values);

    krocore::string16 GetComponentID() const override;
    int GetParameterCount() const override { return static_cast<int>(fInfos.size()); }
    const kroaudiofilterhost::AudioFilterParameterInfo* GetParameterInfo(int index) const override;
    // Every curve is flat: zeros.
    bool GetResponseCurve(int index, std::size_t size, std::vector<float>& values) const override;

protected:
    void OnProcess(const kroaudiofilterhost::AudioFilterBlock& block) noexcept override;

private:
    class Info;

    std::string fScripts;
    std::vector<std::unique_ptr<Info>> fInfos;
};

// The initial values of the inputs "in0", "in1", ... of a sheet, up to the last one; 0 for those that it does not have.
// Nothing for a script that is no sheet.
std::optional<std::vector<float>> InputDefaults(const std::string& sheetScript);

} // namespace workbench
