// SPDX-License-Identifier: Apache-2.0
#include "browser_part.h"
#include "facts.h"
#include "frame.h"
#include "markup.h"
#include "policy.h"
#include "say.h"
#include "sound_data.h"
#include "tables.h"
#include "timeline_data.h"

#include <trellant/page/page.h>
#include <trellant/version.h>

#include <functional>
#include <map>

namespace trellant::page {

namespace {

void writeTexts(Markup& markup) {
    constexpr std::size_t prefix = std::string_view("page.").size();
    ScriptSafeSink sink(markup);
    JsonWriter writer(sink);
    writer.beginObject();
    for (const PageText& text : pageTexts()) {
        const std::string_view name = std::string_view(text.key).substr(prefix);
        writer.plainKey(name);
        writer.string(say(name));
    }
    writer.endObject();
    writer.flush();
}

class Page {
  public:
    Page(const PageRequest& request, JsonSink& sink)
        : request_(request),
          markup_(sink),
          summary_(request.handOff),
          sources_(request.handOff),
          script_(pageScript()),
          style_(pageStyle()) {}

    void write() {
        const std::map<std::string_view, std::function<void()>> parts = slots();
        writeFrame(markup_, pageFrame(), [&parts](std::string_view name) { parts.at(name)(); });
        markup_.flush();
    }

  private:
    std::map<std::string_view, std::function<void()>> slots() {
        return {
            {"policy", [this] { markup_.text(contentPolicy(script_, style_)); }},
            {"version", [this] { markup_.text(versionText); }},
            {"title", [this] { markup_.text(compositionText(request_.handOff)); }},
            {"file", [this] { markup_.name(request_.file); }},
            {"style", [this] { markup_.raw(style_); }},
            {"facts", [this] { writeFacts(markup_, request_, summary_); }},
            {"verdict", [this] { writeVerdict(markup_, request_, summary_); }},
            {"tables", [this] { writeTables(); }},
            {"texts", [this] { writeTexts(markup_); }},
            {"data",
             [this] {
                 ScriptSafeSink sink(markup_);
                 writeTimelineData(request_, sources_, sink);
             }},
            {"waves",
             [this] {
                 ScriptSafeSink sink(markup_);
                 writeWaveforms(request_.sound, sink);
             }},
            {"previews",
             [this] {
                 ScriptSafeSink sink(markup_);
                 writePreviews(request_.sound, sink);
             }},
            {"script", [this] { markup_.raw(script_); }},
        };
    }

    void writeTables() {
        writeLosses(markup_, request_.handOff);
        writeClips(markup_, request_.handOff, sources_);
        writeTracks(markup_, request_.handOff);
        writeSources(markup_, sources_, request_.fullFiles);
        writeCompositions(markup_, request_.handOff);
        writeChanges(markup_, request_.handOff);
    }

    const PageRequest& request_;
    Markup markup_;
    Summary summary_;
    Sources sources_;
    std::string script_;
    std::string style_;
};

}  // namespace

void writePage(const PageRequest& request, JsonSink& sink) {
    Page(request, sink).write();
}

}  // namespace trellant::page
