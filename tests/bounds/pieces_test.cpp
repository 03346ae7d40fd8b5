// Taking media out: at most 8 MiB above what looking takes, whatever the size of a value.
#include "bounds_fixture.h"
#include "generated_file.h"
#include "growing_file.h"
#include "worker_fixture.h"

#include <filesystem>

namespace trellant::testing {
namespace {

class Extraction : public BoundsTest {
  protected:
    /// Looks, and takes out one file of `byteCount` bytes called `name`.
    void expectNoMore(std::string_view shape, std::string_view name, std::uint64_t byteCount,
                      std::uint64_t bound) const {
        const auto looking = inspect(2 * bound + addressBase);
        const auto taking = extract(2 * bound + addressBase);
        EXPECT_EQ(looking.status, 0) << looking.errors;
        EXPECT_EQ(taking.status, 0) << taking.errors;
        EXPECT_EQ(std::filesystem::file_size(work() + "/" + std::string(name)), byteCount);
        expectPeak(looking, std::string(shape) + "Inspected", bound);
        expectPeak(taking, std::string(shape) + "Extracted", bound);
        if (!sanitized) {
            EXPECT_LE(taking.peak, looking.peak + 8 * mebibyte);
        }
    }
};

TEST_F(Extraction, OfAMillionPiecesTakesNoMoreThanLooking) {
    // Pieces of 16 bytes: an item each, 9 bytes of the table.
    const std::uint64_t count = generateFile(file(), "pieces", 1'000'000);
    expectNoMore("Pieces", "Take 0.wav", 16 * count, count * (9 + 32) + base);
}

TEST_F(Extraction, OfALongValueTakesNoMoreThanLooking) {
    // A hole in the file, which is nowhere on the disk until it is taken out.
    constexpr std::uint64_t size = (sanitized ? 16 : 128) * mebibyte;
    OmfBuilder omf = oneClipDocument();
    constexpr ObjectID media = 2;
    omf.at(media).without("OMFI:WAVE:AudioData");
    const auto data = omf.container().propertyID("OMFI:WAVE:AudioData");
    GrowingFile source(file(), omf.image());
    const auto offset = source.zeros(size);
    source.object(media, data);
    source.range(offset, size);
    source.finish();
    expectNoMore("LongValue", "Tone.wav", size, base);
}

}  // namespace
}  // namespace trellant::testing
