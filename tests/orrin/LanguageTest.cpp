// Runs the scripts in language/<feature>/*.txt. A script is a list of cases: an expression, which may go over several
// lines, and a line "// expect: <the value as text>" or "// error: line:column: <message>", where lines count from the
// beginning of the file. "// let name = expression" sets a variable for the cases below it.
#include "SourcePaths.h"
#include "orrin/dictionary.h"
#include "orrin/expression_parser.h"
#include "orrin/functions.h"
#include "orrin/serialization.h"
#include "orrin/virtual_machine.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <map>
#include <sstream>

namespace orrin {
namespace {

using function_t = any_regular_t (*)(const any_regular_t&);

any_regular_t ReturnArguments(const any_regular_t& arguments) {
    return arguments;
}

any_regular_t Fail(const any_regular_t&) {
    throw std::runtime_error("failed on purpose");
}

any_regular_t CallFunction(name_t name, const any_regular_t& arguments) {
    static const std::map<std::string_view, function_t> kFunctions = {
        {"default_maximum", functions::default_maximum},
        {"default_minimum", functions::default_minimum},
        {"evaluate_serialization", functions::evaluate_serialization},
        {"evaluate_token_stream", functions::evaluate_token_stream},
        {"has_key", functions::has_key},
        {"name_to_string", functions::name_to_string},
        {"serialize_regular", functions::serialize_regular},
        {"serialize_token_stream", functions::serialize_token_stream},
        {"string_to_name", functions::string_to_name},
        {"tokenize_regular", functions::tokenize_regular},
        {"dictionary_union", functions::merge_dictionary_set},
        {"tokenize_serialization", functions::tokenize_serialization},
        {"arguments", ReturnArguments},
        {"fail", Fail},
    };
    const auto found = kFunctions.find(name.text());
    if (found == kFunctions.end()) throw std::invalid_argument("unknown function");
    return found->second(arguments);
}

class ScriptRunner {
public:
    explicit ScriptRunner(const std::filesystem::path& file) : fFile(file) {
        fMachine.set_function_lookup(CallFunction);
        fMachine.set_variable_lookup([this](name_t name) {
            const any_regular_t* const value = fVariables.find(name);
            if (!value) throw std::invalid_argument("unknown variable");
            return *value;
        });
    }

    void Run() {
        std::ifstream stream(fFile, std::ios::binary);
        ASSERT_TRUE(stream) << fFile;
        for (std::string line; std::getline(stream, line);) {
            ++fLine;
            TakeLine(line);
        }
        EXPECT_EQ(fExpression.find_first_not_of('\n'), std::string::npos) << "a case without an expectation";
        EXPECT_GT(fCases, 0);
    }

private:
    void TakeLine(const std::string& line) {
        if (line.starts_with("// let ")) {
            SetVariable(line.substr(7));
        } else if (line.starts_with("// expect: ")) {
            Check("value: " + line.substr(11));
        } else if (line.starts_with("// error: ")) {
            Check("error: " + line.substr(10));
        } else {
            fExpression += line;
        }
        fExpression += '\n';
    }

    void SetVariable(const std::string& definition) {
        const std::size_t sign = definition.find(" = ");
        fVariables[name_t(definition.substr(0, sign))] = Evaluate(definition.substr(sign + 3));
    }

    // Lines of earlier cases are blanks, so that places count from the beginning of the file.
    void Check(const std::string& expected) {
        std::string outcome;
        try {
            outcome = "value: " + serialize_regular(Evaluate(fExpression));
        } catch (const error_t& error) {
            outcome = "error: " + std::to_string(error.position().line) + ':' +
                      std::to_string(error.position().column) + ": " + error.message();
        }
        EXPECT_EQ(outcome, expected) << fFile.string() << ':' << fLine;
        fExpression.assign(static_cast<std::size_t>(std::ranges::count(fExpression, '\n')), '\n');
        ++fCases;
    }

    any_regular_t Evaluate(const std::string& text) {
        return fMachine.evaluate(parse_expression(text, fFile.filename().string()));
    }

    std::filesystem::path fFile;
    virtual_machine_t fMachine;
    dictionary_t fVariables;
    std::string fExpression;
    int fLine = 0;
    int fCases = 0;
};

std::vector<std::string> Scripts() {
    const std::filesystem::path folder = QO_SOURCE_DIR "/tests/orrin/language";
    std::vector<std::string> names;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(folder)) {
        if (entry.path().extension() == ".txt") names.push_back(entry.path().lexically_relative(folder).string());
    }
    std::ranges::sort(names);
    return names;
}

std::string TestName(const testing::TestParamInfo<std::string>& info) {
    std::string name = info.param.substr(0, info.param.find('.'));
    std::ranges::replace_if(
        name, [](char c) { return std::isalnum(static_cast<unsigned char>(c)) == 0; }, '_');
    return name;
}

class Language : public testing::TestWithParam<std::string> {};

TEST_P(Language, ScriptDoesWhatItExpects) {
    ScriptRunner(std::filesystem::path(QO_SOURCE_DIR "/tests/orrin/language") / GetParam()).Run();
}

INSTANTIATE_TEST_SUITE_P(Scripts, Language, testing::ValuesIn(Scripts()), TestName);

} // namespace
} // namespace orrin
