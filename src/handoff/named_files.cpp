// SPDX-License-Identifier: Apache-2.0
#include "named_files.h"

#include <algorithm>
#include <utility>

namespace trellant {

namespace {

std::int64_t channelsOf(const MediaCandidate& file) {
    return file.facts->format.channels.value_or(0);
}

}  // namespace

void NamedFiles::Longest::add(const File& file) {
    if (!first || file.frames > first->frames) {
        second = std::exchange(first, file);
    } else if (!second || file.frames > second->frames) {
        second = file;
    }
}

std::optional<std::size_t> NamedFiles::Longest::only(std::uint64_t frames) const {
    const bool isOne = first && first->frames >= frames && !(second && second->frames >= frames);
    return isOne ? std::optional(first->index) : std::nullopt;
}

NamedFiles::NamedFiles(std::vector<MediaCandidate> files) : files_(std::move(files)) {
    std::vector<std::size_t> order;
    for (std::size_t index = 0; index < files_.size(); ++index) {
        const auto& facts = files_[index].facts;
        if (facts && facts->format.sampleRate && facts->frames) {
            order.push_back(index);
        }
    }
    std::stable_sort(order.begin(), order.end(), [this](std::size_t left, std::size_t right) {
        return channelsOf(files_[left]) > channelsOf(files_[right]);
    });
    for (const std::size_t index : order) {
        const MediaCandidate& file = files_[index];
        std::vector<OfChannels>& steps = byRate_[*file.facts->format.sampleRate];
        OfChannels step = steps.empty() ? OfChannels{} : steps.back();
        step.channels = channelsOf(file);
        const Longest::File added{.frames = *file.facts->frames, .index = index};
        step.all.add(added);
        if (file.isBeside) {
            step.beside.add(added);
        }
        steps.push_back(step);
    }
}

NamedFiles::Fitting NamedFiles::fitting(const SourceNeeds& needs) const {
    const auto ofRate = byRate_.find(needs.sampleRate);
    if (ofRate == byRate_.end()) {
        return {};
    }
    const std::vector<OfChannels>& steps = ofRate->second;
    const auto end = std::partition_point(steps.begin(), steps.end(), [&](const OfChannels& step) {
        return step.channels >= needs.channels;
    });
    if (end == steps.begin()) {
        return {};
    }
    const OfChannels& enough = *std::prev(end);
    const auto frames = static_cast<std::uint64_t>(std::max<std::int64_t>(needs.frames, 0));
    if (enough.all.first->frames < frames) {
        return {};
    }
    const auto only = enough.all.only(frames);
    return {.any = enough.all.first->index, .decided = only ? only : enough.beside.only(frames)};
}

}  // namespace trellant
