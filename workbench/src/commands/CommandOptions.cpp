#include "workbench/commands/CommandOptions.h"

#include "krocore/FilePath.h"
#include "krocore/NumberFormat.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>
#include <cmath>

namespace workbench {

namespace {

constexpr double kSmallestScale = 0.5;
constexpr double kLargestScale = 4;

} // namespace

void AddNumber(CLI::App& command, const char* name, double low, double high, const char* unit, const char* help,
               const std::function<void(double)>& set) {
    const auto read = [=](const std::string& text) {
        const auto number = krocore::ParseTypedNumber(krocore::ToUTF16(text), krocore::ToUTF16(unit));
        if (!number || !std::isfinite(*number) || *number < low || *number > high)
            throw CLI::ValidationError(name, fmt::format(R"("{}" is no number from {} to {})", text, low, high));
        set(*number);
    };
    command.add_option_function<std::string>(name, read, help)->type_name(*unit != '\0' ? unit : "NUMBER");
}

void AddWholeNumber(CLI::App& command, const char* name, int low, int high, const char* help,
                    const std::function<void(int)>& set) {
    const auto setWhole = [=](double number) {
        if (number != std::trunc(number))
            throw CLI::ValidationError(name, fmt::format("{} is no whole number", number));
        set(static_cast<int>(number));
    };
    AddNumber(command, name, low, high, "", help, setWhole);
}

void AddWord(CLI::App& command, const char* name, const std::vector<std::string>& words, const char* help,
             const std::function<void(const std::string&)>& set) {
    const auto read = [=](const std::string& text) {
        const auto word = std::ranges::find_if(
            words, [&](const std::string& each) { return krocore::EqualsIgnoringCase(each, text); });
        if (word == words.end())
            throw CLI::ValidationError(name, fmt::format(R"("{}" is none of {})", text, fmt::join(words, ", ")));
        set(*word);
    };
    command.add_option_function<std::string>(name, read, help)->type_name(fmt::format("{}", fmt::join(words, "|")));
}

CLI::Option* AddPath(CLI::App& command, std::filesystem::path& path, const char* name, const char* help) {
    return command
        .add_option_function<std::string>(
            name, [&path](const std::string& text) { path = krocore::PathFromText(text); }, help)
        ->type_name("PATH");
}

void AddTheme(CLI::App& command, std::string& theme) {
    AddWord(command, "--theme", {"dark", "light"}, "the colours", [&theme](const std::string& word) { theme = word; });
}

void AddScale(CLI::App& command, float& scale, const char* name, const char* help) {
    AddNumber(command, name, kSmallestScale, kLargestScale, "", help,
              [&scale](double number) { scale = static_cast<float>(number); });
}

void AddFormat(CLI::App& command, TableFormat& format) {
    AddWord(
        command, "--format", {"table", "tsv", "json"},
        "table: for people; tsv: a tab between cells; json: a list of objects", [&format](const std::string& word) {
            format = word == "tsv" ? TableFormat::kTabbed : word == "json" ? TableFormat::kJSON : TableFormat::kAligned;
        });
}

void AddEffect(CLI::App& command, std::string& effect) {
    command.add_option("--effect", effect, R"(the effect, as "workbench list" names it)")
        ->type_name("NAME")
        ->required();
}

void AddPreset(CLI::App& command, std::string& preset) {
    command.add_option("--preset", preset, R"(a preset to begin with: its name, see "workbench presets", or a file)")
        ->type_name("NAME|FILE");
}

void AddSettings(CLI::App& command, std::vector<std::string>& settings) {
    command
        .add_option("--set", settings,
                    R"(set a parameter: gain1=-6, "Gain 1=-6 dB", n:0.5 for a normalised value; may be repeated)")
        ->type_name("PARAM=VALUE")
        ->expected(1)
        ->allow_extra_args(false) // the files may follow
        ->take_all();
}

void AddSoundKind(CLI::App& command, qohost::SoundKind& kind) {
    constexpr int kHighestRate = 1000000;
    constexpr int kMostChannels = 32;
    const auto setType = [&kind](const std::string& type) {
        if (!qohost::IsSoundType(type))
            throw CLI::ValidationError("--type", fmt::format(R"("{}" is no kind of sound file)", type));
        kind.type = type;
    };
    command
        .add_option_function<std::string>("--type", setType,
                                          "how a stream stores sound: wav, au, raw (16 bits) and the like")
        ->type_name("TYPE");
    AddWholeNumber(command, "--rate", 1, kHighestRate, "the sample rate of raw sound that is read, in hertz",
                   [&kind](int rate) { kind.sampleRate = rate; });
    AddWholeNumber(command, "--channels", 1, kMostChannels, "the channels of raw sound that is read, 1 to 32",
                   [&kind](int channels) { kind.channels = channels; });
}

void AddOverwrite(CLI::App& command, bool& overwrite) {
    command.add_flag("--overwrite", overwrite, "replace OUT if it is there");
}

} // namespace workbench
