// SPDX-License-Identifier: Apache-2.0
// Every rule, each in a file of its own: in media what concerns audio files, in time what concerns
// places on the timeline, in structure all else. rule_table.cpp lists them.
#pragma once

#include <trellant/check/rule.h>

namespace trellant::check {

extern const Rule mediaMissing;
extern const Rule mediaAmbiguous;
extern const Rule mediaLinked;
extern const Rule mediaPastEnd;
extern const Rule mediaUnused;
extern const Rule lossDropped;
extern const Rule lossSound;
extern const Rule effects;
extern const Rule nesting;
extern const Rule omfVersion;
extern const Rule fileSize;
extern const Rule compositions;
extern const Rule rateExpected;
extern const Rule rateMixed;
extern const Rule depthExpected;
extern const Rule depthMixed;
extern const Rule channelsMono;
extern const Rule handles;
extern const Rule startTimecode;
extern const Rule frameRate;
extern const Rule rateLabel;
extern const Rule offFrame;
extern const Rule overlap;
extern const Rule tinyClip;
extern const Rule duplicate;
extern const Rule pairs;
extern const Rule trackNames;
extern const Rule muted;
extern const Rule gainRange;
extern const Rule namesOdd;
extern const Rule popHead;
extern const Rule silent;
extern const Rule clipped;

}  // namespace trellant::check
