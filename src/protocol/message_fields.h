// The field tables of the messages.
#pragma once

#include <trellant/json/record_traits.h>
#include <trellant/protocol/messages.h>

#include <tuple>

namespace trellant {

template <>
struct RecordFields<AAFWorkerProtocol::Request> {
    using R = AAFWorkerProtocol::Request;
    static constexpr auto fields =
        std::tuple{field("protocolVersion", &R::protocolVersion),
                   field("operation", &R::operation),
                   field("aafPath", &R::aafPath),
                   field("workDirectory", &R::workDirectory),
                   field("mediaSearchDirectory", &R::mediaSearchDirectory),
                   field("recoverProToolsTrueFades", &R::recoverProToolsTrueFades),
                   field("removeProToolsSampleAccurateEditFragments",
                         &R::removeProToolsSampleAccurateEditFragments)};
};

template <>
struct RecordFields<AAFWorkerProtocol::Progress> {
    using R = AAFWorkerProtocol::Progress;
    static constexpr auto fields = std::tuple{
        field("phase", &R::phase), field("fraction", &R::fraction), field("detail", &R::detail)};
};

template <>
struct RecordFields<AAFWorkerProtocol::Result> {
    using R = AAFWorkerProtocol::Result;
    static constexpr auto fields =
        std::tuple{field("protocolVersion", &R::protocolVersion), field("timeline", &R::timeline),
                   field("diagnostics", &R::diagnostics),
                   field("embeddedMediaSHA256", &R::embeddedMediaSHA256)};
};

}  // namespace trellant
