// SPDX-License-Identifier: Apache-2.0
// Reads and writes that move less than they were asked to, and interruptions before each.
#include "sweep.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <filesystem>

namespace trellant::testing {

namespace {

constexpr std::array transfers{CallKind::memoryRead,  CallKind::requestRead, CallKind::lineWrite,
                               CallKind::resultWrite, CallKind::sourceRead,  CallKind::kernelCopy,
                               CallKind::fileWrite,   CallKind::probeRead};
constexpr std::array openings{CallKind::sourceOpen, CallKind::fileCreation, CallKind::probeOpen,
                              CallKind::searchOpen};

template <class Kinds>
bool isOneOf(const Kinds& kinds, CallKind kind) {
    return std::find(kinds.begin(), kinds.end(), kind) != kinds.end();
}

bool movesBytes(CallKind kind) {
    return isOneOf(transfers, kind);
}

bool isInterruptible(CallKind kind) {
    return movesBytes(kind) || isOneOf(openings, kind);
}

/// Halves, or single bytes.
enum class Piece { half, byte };

/// Every call is interrupted once before it is made, and then moves little.
class Nuisance {
  public:
    explicit Nuisance(Piece piece) : piece_(piece) {}

    Intervention operator()(const SeenCall& seen) {
        const bool interrupts = !wasInterrupted_ && isInterruptible(seen.kind);
        wasInterrupted_ = interrupts;
        if (interrupts) {
            ++interruptions_;
            return {.errorNumber = EINTR};
        }
        if (!movesBytes(seen.kind)) {
            return {};
        }
        ++shortened_;
        const auto asked = seen.call.arguments.at(seen.kind == CallKind::kernelCopy ? 4 : 2);
        return {.byteLimit = piece_ == Piece::byte ? 1 : (asked + 1) / 2};
    }

    [[nodiscard]] std::size_t interruptions() const { return interruptions_; }
    [[nodiscard]] std::size_t shortened() const { return shortened_; }

  private:
    Piece piece_;
    bool wasInterrupted_ = false;
    std::size_t interruptions_ = 0;
    std::size_t shortened_ = 0;
};

class ShortTransfers : public TracedTest {
  protected:
    static void expectSame(const Scene& scene, Piece piece) {
        const SweepStart start{.operation = "extractAndInspect"};
        TracedRun traced;
        const auto undisturbed = undisturbedRun(scene, start, traced);
        std::filesystem::remove_all(scene.work());
        Nuisance nuisance(piece);
        const TracedRun disturbed =
            runTraced({.input = scene.request(start.operation),
                       .places = scene.places(),
                       .director = [&](const SeenCall& seen, pid_t) { return nuisance(seen); }});
        EXPECT_EQ(disturbed.run.status, 0);
        EXPECT_EQ(disturbed.run.output, undisturbed.output);
        EXPECT_EQ(disturbed.run.errors, undisturbed.errors);
        EXPECT_EQ(scene.everything(), undisturbed.everything);
        RecordProperty("interruptions", static_cast<int>(nuisance.interruptions()));
        RecordProperty("shortened", static_cast<int>(nuisance.shortened()));
        EXPECT_GT(nuisance.interruptions(), 20U);
        EXPECT_GT(nuisance.shortened(), 20U);
    }
};

TEST_F(ShortTransfers, HalvesAndInterruptionsChangeNothing) {
    expectSame(Scene(), Piece::half);
}

TEST_F(ShortTransfers, SingleBytesAndInterruptionsChangeNothing) {
    expectSame(Scene(), Piece::byte);
}

TEST_F(ShortTransfers, HalvesAndInterruptionsOfTheKernelsCopyChangeNothing) {
    expectSame(Scene({.suitsKernelCopy = true}), Piece::half);
}

}  // namespace

}  // namespace trellant::testing
