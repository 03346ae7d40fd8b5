// SPDX-License-Identifier: Apache-2.0
#include "hand_offs.h"

#include <trellant/check/rule.h>

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <utility>

namespace trellant::page {

namespace {

std::size_t countOf(std::string_view text, std::string_view wanted) {
    std::size_t count = 0;
    for (auto at = text.find(wanted); at != std::string_view::npos;
         at = text.find(wanted, at + wanted.size())) {
        ++count;
    }
    return count;
}

std::string_view dataOf(std::string_view page) {
    constexpr std::string_view opening = "<script type=\"application/json\" id=\"data\">";
    page.remove_prefix(page.find(opening) + opening.size());
    return page.substr(0, page.find("</script>"));
}

TEST(Page, SaysWhatInfoSays) {
    const std::string page = pageOf(handOffOfEverything());
    EXPECT_NE(page.find("<h1>Everything</h1><p class=\"file\">mix.omf</p>"), std::string::npos);
    EXPECT_NE(page.find("<dt>Starts at</dt><dd>01:00:00:00</dd>"), std::string::npos);
    EXPECT_NE(page.find("<dt>Frame rate</dt><dd>25 fps</dd>"), std::string::npos);
    EXPECT_NE(page.find("<dt>Length</dt><dd>00:00:20:00</dd>"), std::string::npos);
    EXPECT_NE(page.find("<dt>Clips</dt><dd>8</dd>"), std::string::npos);
    EXPECT_NE(page.find("<dt>Audio files</dt><dd>2: 1 embedded, 1 missing</dd>"),
              std::string::npos);
    EXPECT_NE(page.find("1 dropped, 1 kept but sounding different, in 2 places"),
              std::string::npos);
    EXPECT_NE(page.find("<dd>" + std::string(64, '0') + "</dd>"), std::string::npos);
}

TEST(Page, HasARowForEachClip) {
    const std::string page = pageOf(handOffOfEverything());
    // Fades of 4 s are 100 frames.
    EXPECT_NE(page.find("\n<tr><td>Power<td>01:00:00:00<td>01:00:10:00<td>Power clip<td>Tone.wav"
                        "<td><td>0.00<td>100f power<td>100f power<td><td>\n"),
              std::string::npos);
    EXPECT_NE(page.find("\n<tr><td>Missing<td>01:00:01:00<td>01:00:06:00<td>Lost take"
                        "<td>missing: Gone.wav<td><td>0.00<td><td><td>no<td>\n"),
              std::string::npos);
    // 0.5 is -6.02 dB.
    EXPECT_NE(page.find("<td>Ridden<td>Tone.wav<td><td>-6.02 ~<td>"), std::string::npos);
}

TEST(Page, SameHandOffGivesTheSameBytes) {
    EXPECT_EQ(pageOf(handOffOfEverything()), pageOf(handOffOfEverything()));
}

TEST(Page, NoNameBecomesMarkup) {
    const std::string plain = pageOf(handOffNamed("x"));
    const std::string page =
        pageOf(handOffNamed("</script></noscript><img src=x onerror=alert(1)>\"'><!--"));
    EXPECT_EQ(countOf(page, "<img"), 0U);
    EXPECT_EQ(countOf(page, "<!--"), 0U);
    EXPECT_EQ(countOf(page, "</script>"), countOf(plain, "</script>"));
    // Neither adds nor takes away any element: as many signs that begin one as with a plain name.
    EXPECT_EQ(countOf(page, "<"), countOf(plain, "<"));
}

TEST(Page, NamesOfTenKilobytesAreCut) {
    // Eighteen places show a name; each takes less than 2,000 bytes of markup.
    EXPECT_LT(pageOf(handOffNamed(std::string(10'000, 'W'))).size(),
              pageOf(handOffNamed("W")).size() + 36'000);
}

TEST(Page, DataIsWellFormedWhateverTheNames) {
    const std::string page = pageOf(handOffNamed("</script>\"\\\n"));
    EXPECT_EQ(nlohmann::json::parse(dataOf(page))["clips"]["track"].size(), 1U);
}

TEST(Page, AsksForNothingOutside) {
    const std::string page = pageOf(handOffOfEverything());
    EXPECT_EQ(countOf(page, "http:"), countOf(page, "http://www.w3.org/2000/svg"));
    EXPECT_EQ(countOf(page, "https:"), 0U);
    EXPECT_EQ(countOf(page, " style=\""), 0U);
    EXPECT_EQ(countOf(page, " onclick"), 0U);
    EXPECT_EQ(countOf(page, "default-src 'none'"), 1U);
}

TEST(Page, TakesAtMostSoManyBytesForAClip) {
    constexpr std::size_t clips = 10'000;
    constexpr std::size_t mostBytes = 250;
    const std::size_t frame = pageOf(reelOf(0)).size();
    EXPECT_LE(pageOf(reelOf(clips)).size() - frame, clips * mostBytes);
}

std::string pageWith(const HandOff& handOff, const check::Verdict& verdict) {
    StringSink sink;
    writePage({.handOff = handOff, .file = "mix.omf", .verdict = &verdict}, sink);
    return std::move(sink.text);
}

TEST(Page, WithoutACheckSaysNothingOfRules) {
    const std::string page = pageOf(handOffOfEverything());
    EXPECT_EQ(countOf(page, "id=\"findings\""), 0U);
    EXPECT_EQ(countOf(page, "href=\"#findings\""), 0U);
}

TEST(Page, SaysTheVerdictAndTheFirstFindingsOfEachRule) {
    check::RuleVerdict handles{.rule = check::ruleNamed("handles"),
                               .severity = check::Severity::error,
                               .count = 22,
                               .acceptedCount = 1};
    check::Finding finding{.sentence = "Too short <b>.", .start = AAFRational(1)};
    finding.duration = AAFRational(2);
    handles.findings.assign(21, finding);
    finding.acceptedBecause = "agreed";
    handles.accepted.assign(1, finding);
    check::RuleVerdict muted{.rule = check::ruleNamed("muted"),
                             .severity = check::Severity::info,
                             .count = 1,
                             .findings = {{.sentence = "Muted."}}};
    const check::Verdict verdict{.profile = "house", .rules = {muted, handles}};
    const std::string page = pageWith(handOffOfEverything(), verdict);
    EXPECT_EQ(countOf(page, "Failed by the profile house: 22 errors, 1 info</a></li>"), 1U);
    // 20 that count, the accepted one, what more there is, and the muted track.
    EXPECT_EQ(countOf(page, "<span class=\"count\">23</span></h2>"), 1U);
    EXPECT_EQ(countOf(page,
                      "\n<tr><td>error<td>handles<td>01:00:01:00<td>01:00:03:00<td><td><td>"
                      "Too short &lt;b&gt;."),
              20U);
    EXPECT_EQ(countOf(page,
                      "<td>accepted<td>handles<td>01:00:01:00<td>01:00:03:00<td><td><td>"
                      "Too short &lt;b&gt;. (agreed)"),
              1U);
    EXPECT_EQ(countOf(page,
                      "<td>error<td>handles<td><td><td><td><td>and 2 more: trellant check "
                      "shows them"),
              1U);
    EXPECT_LT(page.find("<td>error<td>handles"), page.find("<td>info<td>muted"))
        << "the gravest first";
}

TEST(Page, WithNothingButWarningsPasses) {
    check::RuleVerdict rule{.rule = check::ruleNamed("handles"),
                            .severity = check::Severity::warning,
                            .count = 1,
                            .findings = {{.sentence = "Short."}}};
    const std::string page =
        pageWith(handOffOfEverything(), {.profile = "post", .rules = {std::move(rule)}});
    EXPECT_EQ(countOf(page,
                      "<li class=\"warning\"><span aria-hidden=\"true\">!</span> "
                      "<a href=\"#findings\">Passed by the profile post: 1 warning</a>"),
              1U);
    EXPECT_EQ(countOf(pageWith(handOffOfEverything(), {.profile = "post"}),
                      "<a href=\"#findings\">Passed by the profile post</a>"),
              1U);
}

TEST(Page, WithoutClipsIsWholeToo) {
    const std::string page = pageOf(emptyHandOff());
    EXPECT_NE(page.find("<h1>(no name)</h1>"), std::string::npos);
    EXPECT_NE(page.find("Nothing was lost"), std::string::npos);
    EXPECT_EQ(countOf(page, "<p class=\"none\">None.</p>"), 6U);
}

}  // namespace

}  // namespace trellant::page
