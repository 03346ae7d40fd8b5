// SPDX-License-Identifier: Apache-2.0
// What the document's script draws, as JSON. Texts that stand in the tables are not told again: the
// script takes a clip's name from its row.
//
//   clock      rate [numerator, denominator] in frames per second, nominal frames per second, drop
//              (frame counting), zero: frames from 00:00:00:00 to the timeline's zero
//   unit       [numerator, denominator]: seconds of one unit
//   length     of the composition, where it is known
//   searched   folders that missing audio was looked for in
//   tracks     gain (factor), pan (absent: none), muted, solo, envelope and panEnvelope (numbers of
//              envelopes, absent: none)
//   states     of the sources, each a word of stateWord
//   rates      of the sources, samples in a second: whole numbers or fractions as text
//   envelopes  [curve, [place, value, ...]]: places from 0 to 1 of their owner
//   clips      columns of one length: track and source (numbers from 0; -1: none), start, length,
//              offset (first frame of the source), and lists of what few clips have: gains [clip,
//              factor, ...], automation [clip, envelope, ...], fadeIn and fadeOut [clip, length,
//              curve, envelope, reversed, ...] (envelope -1: the curve says it all; reversed 1: its
//              points count from its end), muted [clip, ...], channels [clip, channel of the source
//              from 0, ...]
//   losses     columns of one length: track, start, length (-1: none), dropped (1, 0)
//
// Curves are the numbers of Curve. Times are numbers of units where they are whole, and else texts,
// exact fractions of a second ("7/3").
#pragma once

#include "markup.h"

#include <trellant/handoff/sources.h>
#include <trellant/page/page.h>

namespace trellant::page {

/// The numbers that curves have in the JSON.
enum class Curve { linear, constant, power, logarithmic, unknown };

/// Writes the object. `sources`: those of the request's hand-off.
void writeTimelineData(const PageRequest& request, const Sources& sources, JsonSink& sink);

}  // namespace trellant::page
