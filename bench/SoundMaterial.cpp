// Writes the sounds that effects are judged on into files, for listening and for other programs to be judged on too,
// all kinds or one:
//
//   sound_material FOLDER [SECONDS [RATE [SEED [KIND]]]]

#include "SoundMaterial.h"
#include "host/SoundFile.h"

#include <cstdlib>
#include <filesystem>
#include <iostream>

namespace {

void WriteFloats(const std::filesystem::path& file, const test::Channels& sound, double rate) {
    qohost::SoundFileWriter writer(file, {.sampleRate = static_cast<float>(rate),
                                          .layout = kromediatypes::AudioChannelLayout::Stereo(),
                                          .frames = sound.front().size(),
                                          .samples = qohost::SampleFormat::kFloat});
    const float* const channels[] = {sound[0].data(), sound[1].data()};
    writer.Write(channels, sound.front().size());
    writer.Commit();
}

} // namespace

int main(int argc, char** argv) {
    if (argc < 2) {
        std::cerr << "sound_material FOLDER [SECONDS [RATE [SEED [KIND]]]]\n";
        return EXIT_FAILURE;
    }
    const double seconds = argc > 2 ? std::atof(argv[2]) : 10;
    const double rate = argc > 3 ? std::atof(argv[3]) : 44100;
    const auto seed = static_cast<unsigned>(argc > 4 ? std::atoi(argv[4]) : 1);
    const std::string_view wanted = argc > 5 ? argv[5] : "";
    const std::filesystem::path folder = argv[1];
    std::filesystem::create_directories(folder);
    for (std::size_t kind = 0; kind < test::kMaterialNames.size(); ++kind) {
        if (!wanted.empty() && wanted != test::kMaterialNames[kind]) continue;
        const auto frames = static_cast<std::size_t>(seconds * rate);
        const test::Channels sound = test::MakeMaterial(static_cast<test::Material>(kind), frames, rate, seed);
        const auto file = folder / (std::string(test::kMaterialNames[kind]) + ".wav");
        std::cout << file.string() << '\n';
        WriteFloats(file, sound, rate);
    }
}
