// SPDX-License-Identifier: Apache-2.0
// Trees drawn by chance, from fixed seeds, each compared with what was put in.
#include "written.h"

#include <map>
#include <random>

namespace trellant::compound {
namespace {

class RandomTree : public ::testing::TestWithParam<unsigned> {
  protected:
    std::size_t below(std::size_t bound) {
        return std::uniform_int_distribution<std::size_t>(0, bound - 1)(generator_);
    }

    std::u16string name() {
        constexpr std::u16string_view units = u"abcXYZ019 -{}._\u00E4\u00D6\u0416\u0436\u03A9";
        std::u16string result;
        for (std::size_t length = 1 + below(31); result.size() < length;) {
            result.push_back(units[below(units.size())]);
        }
        return result;
    }

    Bytes content() {
        constexpr std::array<std::size_t, 9> lengths{0, 1, 63, 64, 65, 4095, 4096, 4097, 9000};
        const std::size_t length = below(3) == 0 ? lengths[below(lengths.size())] : below(700);
        Bytes bytes(length);
        for (std::byte& byte : bytes) {
            byte = static_cast<std::byte>(below(256));
        }
        return bytes;
    }

    std::mt19937 generator_{GetParam()};
};

TEST_P(RandomTree, ComesBackAsItWasPutIn) {
    CompoundFile file = newFile();
    std::vector<Storage> storages{Storage::root};
    std::map<std::pair<Storage, std::u16string>, Bytes> streams;
    for (std::size_t count = below(400); count > 0; --count) {
        const Storage parent = storages[below(storages.size())];
        // A number makes it unique in every case.
        const std::string number = std::to_string(count);
        const std::u16string called =
            name().substr(0, 26) + u"#" + std::u16string(number.begin(), number.end());
        if (below(3) == 0) {
            storages.push_back(file.addStorage(parent, called));
            continue;
        }
        const Bytes& bytes = streams[{parent, called}] = content();
        if (below(2) == 0) {
            file.addStream(parent, called, bytes);
        } else {
            file.addStream(parent, called, bytes.size(),
                           [&](const ByteSink& sink) { sink(bytes); });
        }
    }
    const Written written(file);
    ASSERT_EQ(written.reader->entries().size(), storages.size() + streams.size());
    for (const auto& [place, bytes] : streams) {
        const auto found =
            written.reader->find(static_cast<std::uint32_t>(place.first), place.second);
        ASSERT_TRUE(found.has_value());
        EXPECT_EQ(written.reader->content(*found), bytes);
    }
}

INSTANTIATE_TEST_SUITE_P(Seeds, RandomTree, ::testing::Range(0U, 60U));

}  // namespace
}  // namespace trellant::compound
