#include "host/PagedFeed.h"

#include "SpscRing.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <cstdint>
#include <exception>
#include <limits>
#include <mutex>
#include <utility>
#include <vector>

namespace qohost {

namespace {

constexpr double kPageSeconds = 0.25;
constexpr std::size_t kAhead = 12;       // pages of what is played next: 3 s
constexpr std::size_t kLoopPages = 2;    // of where a loop goes back to, at least
constexpr std::size_t kOutsidePages = 2; // of what follows, should the range be taken away
constexpr std::size_t kWantedPages = kAhead + kLoopPages + kOutsidePages;
constexpr std::size_t kSparePages = 2; // so that something can be read while all others are wanted
constexpr std::size_t kPages = kWantedPages + kSparePages;
constexpr std::size_t kRoomInRings = 32;
static_assert(kRoomInRings >= kPages, "a page is on its way once");
constexpr std::size_t kLargestMemory = 32 * 1024 * 1024; // bytes of all pages

std::size_t UsualPageFrames(const SoundSource& source) {
    const std::size_t room = kLargestMemory / (kPages * source.Layout().size() * sizeof(float));
    return std::clamp<std::size_t>(static_cast<std::size_t>(source.SampleRate() * kPageSeconds), 1, room);
}

// The numbers of the pages that playing comes to next, the most urgent first.
class WantedPages {
public:
    WantedPages(const PlaybackPath& path, std::size_t frames, std::size_t pageFrames) : fPageFrames(pageFrames) {
        Add(path.position, path.end, kAhead);
        Add(path.loopBegin, path.loopEnd, path.loop ? std::max(kLoopPages, kAhead - fCount) : kLoopPages);
        Add(path.position, frames, kOutsidePages);
    }
    const std::size_t* begin() const { return fNumbers.data(); }
    const std::size_t* end() const { return fNumbers.data() + fCount; }
    bool Contain(std::size_t number) const { return std::find(begin(), end(), number) != end(); }

private:
    void Add(std::size_t from, std::size_t to, std::size_t atMost) {
        for (std::size_t number = from / fPageFrames; number * fPageFrames < to && atMost > 0; ++number, --atMost)
            if (!Contain(number) && fCount < fNumbers.size()) fNumbers[fCount++] = number;
    }

    std::size_t fPageFrames;
    std::array<std::size_t, kWantedPages> fNumbers{};
    std::size_t fCount = 0;
};

enum class PageState { kFree, kRequested, kRead, kUnreadable };

constexpr std::uint64_t kNowhere = std::numeric_limits<std::uint64_t>::max();

// Which part of the sound a page holds: the sound thread's knowledge.
struct Page {
    std::size_t number = 0;
    PageState state = PageState::kFree;
};

struct Request {
    std::size_t page = 0; // where to read it to
    std::size_t number = 0;
    unsigned urgency = 0;
};

struct Answer {
    std::size_t page = 0;
    PageState state = PageState::kFree;
};

} // namespace

// The samples of a page belong to the sound thread until it is requested, to the reading one until it is answered.
struct PagedFeed::State {
    State(std::shared_ptr<const SoundSource> sound, std::size_t frames)
        : source(std::move(sound)), pageFrames(frames > 0 ? frames : UsualPageFrames(*source)),
          samples(kPages * source->Layout().size(), std::vector<float>(pageFrames)) {}

    std::span<std::vector<float>> Samples(std::size_t page) {
        const std::size_t channels = source->Layout().size();
        return std::span(samples).subspan(page * channels, channels);
    }
    // Sound thread.
    Page* Find(std::size_t number) noexcept {
        const auto holds = [number](const Page& p) { return p.state != PageState::kFree && p.number == number; };
        auto* const page = std::ranges::find_if(pages, holds);
        return page != pages.end() ? page : nullptr;
    }
    void TakeAnswers() noexcept {
        while (const auto answer = answers.Pop())
            pages[answer->page].state = answer->state;
    }
    void Forget(const auto& isTriedAgain) noexcept {
        for (Page& page : pages)
            if (page.state == PageState::kUnreadable && isTriedAgain(page)) page.state = PageState::kFree;
    }
    // False when there is no room now.
    bool AskFor(std::size_t number, const WantedPages& wanted) noexcept {
        const auto isFree = [&wanted](const Page& page) {
            return page.state == PageState::kFree ||
                   (page.state != PageState::kRequested && !wanted.Contain(page.number));
        };
        auto* const page = std::ranges::find_if(pages, isFree);
        if (page == pages.end()) return false;
        *page = {number, PageState::kRequested};
        requests.Push({static_cast<std::size_t>(page - pages.begin()), number, urgency.load()});
        return true;
    }
    // The reading thread.
    PageState Read(const Request& request) noexcept {
        try {
            const std::uint64_t place = std::uint64_t{request.number} * pageFrames;
            if (!reader) reader = source->NewReader();
            if (place != readerPlace) reader->Seek(place);
            readerPlace = kNowhere;
            std::ranges::transform(Samples(request.page), channels.begin(), [](auto& c) { return c.data(); });
            readerPlace = place + reader->Read(channels, pageFrames);
            return PageState::kRead;
        } catch (const std::exception& error) {
            reader.reset();
            Tell(error.what());
            return PageState::kUnreadable;
        }
    }
    void Tell(const char* reason) noexcept {
        const std::lock_guard lock(problemMutex);
        if (toldProblem == reason) return;
        problem = toldProblem = reason;
    }

    const std::shared_ptr<const SoundSource> source;
    const std::size_t pageFrames;
    std::vector<std::vector<float>> samples; // page by page, a buffer a channel
    std::array<Page, kPages> pages;          // the sound thread's
    SpscRing<Request, kRoomInRings> requests;
    SpscRing<Answer, kRoomInRings> answers;
    std::atomic<unsigned> urgency{0};     // requests of an earlier one are of no use any more
    std::unique_ptr<SoundReader> reader;  // the reading thread's
    std::uint64_t readerPlace = kNowhere; // where it stands; going to a place takes longer than being there
    std::vector<float*> channels = std::vector<float*>(source->Layout().size());
    std::mutex problemMutex;
    std::string problem;
    std::string toldProblem;
};

PagedFeed::PagedFeed(std::shared_ptr<const SoundSource> source, std::size_t pageFrames)
    : fState(std::make_unique<State>(std::move(source), pageFrames)) {
}

PagedFeed::~PagedFeed() = default;

float PagedFeed::SampleRate() const noexcept {
    return fState->source->SampleRate();
}

const kromediatypes::AudioChannelLayout& PagedFeed::Layout() const noexcept {
    return fState->source->Layout();
}

std::size_t PagedFeed::Frames() const noexcept {
    return static_cast<std::size_t>(fState->source->Frames());
}

// A place that nobody has seen coming goes before all that was asked for until then.
void PagedFeed::Expect(const PlaybackPath& path) noexcept {
    State& state = *fState;
    state.TakeAnswers();
    const WantedPages wanted(path, Frames(), state.pageFrames);
    state.Forget([&wanted](const Page& page) { return !wanted.Contain(page.number); });
    if (wanted.begin() != wanted.end() && !state.Find(*wanted.begin())) ++state.urgency;
    for (const std::size_t number : wanted)
        if (!state.Find(number) && !state.AskFor(number, wanted)) return;
}

bool PagedFeed::IsReady(std::size_t frame) const noexcept {
    if (frame >= Frames()) return true;
    const Page* const page = fState->Find(frame / fState->pageFrames);
    return page && (page->state == PageState::kRead || page->state == PageState::kUnreadable);
}

std::size_t PagedFeed::Fetch(std::size_t frame, std::span<std::vector<float>> channels, std::size_t offset,
                             std::size_t count) noexcept {
    State& state = *fState;
    std::size_t missing = 0;
    while (count > 0) {
        const std::size_t start = frame % state.pageFrames;
        const std::size_t part = std::min(count, state.pageFrames - start);
        const Page* const page = state.Find(frame / state.pageFrames);
        const bool isThere = page && page->state == PageState::kRead;
        for (std::size_t channel = 0; channel < channels.size(); ++channel) {
            float* const to = channels[channel].data() + offset;
            if (isThere)
                std::copy_n(state.Samples(static_cast<std::size_t>(page - state.pages.data()))[channel].data() + start,
                            part, to);
            else
                std::fill_n(to, part, 0.0F);
        }
        if (!isThere) missing += part;
        frame += part;
        offset += part;
        count -= part;
    }
    return missing;
}

void PagedFeed::SetPlaying(bool playing) noexcept {
    if (!playing) return;
    fState->Forget([](const Page&) { return true; });
    const std::lock_guard lock(fState->problemMutex);
    fState->toldProblem.clear();
}

std::string PagedFeed::TakeProblem() {
    const std::lock_guard lock(fState->problemMutex);
    return std::exchange(fState->problem, {});
}

void PagedFeed::Serve() noexcept {
    while (const auto request = fState->requests.Pop()) {
        const bool isWanted = request->urgency == fState->urgency.load();
        fState->answers.Push({request->page, isWanted ? fState->Read(*request) : PageState::kFree});
    }
}

} // namespace qohost
