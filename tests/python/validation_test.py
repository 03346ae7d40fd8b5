# SPDX-License-Identifier: Apache-2.0
"""Each rule of a timeline, broken by one change to a timeline that keeps them all."""
import unittest
from dataclasses import replace
from fractions import Fraction

import trellant
from trellant import AutomationPoint, Curve, FadeDirection, Interpolation

LARGEST = 2**63 - 1
RATE = trellant.TimecodeRate(Fraction(30_000, 1_001), 30, True)
POINTS = (AutomationPoint(Fraction(0), 1.0), AutomationPoint(Fraction(1), 0.0))
ENVELOPE = trellant.AutomationEnvelope(Interpolation(Curve.LINEAR), POINTS)
FADE = trellant.Fade(FadeDirection.FADE_IN, Fraction(0), Interpolation(Curve.POWER), POINTS)


def timeline():
    """Two tracks, one source, two clips."""
    track = trellant.TrackState("t1", 0, 1.0, False, False, gain_automation=ENVELOPE, pan_automation=ENVELOPE)
    essence = trellant.SourceEssence("s1", True, Fraction(48_000), 2, bit_depth=24)
    event = trellant.ClipEvent(
        "e1", "t1", "s1", Fraction(0), Fraction(1), 0, trellant.ChannelRole.MONO, 1.0, False, source_channel=1,
        clip_gain_automation=ENVELOPE, fade_in=FADE, fade_out=FADE)
    label = trellant.TimecodeAddress(1, 0, 0, 0, RATE)
    return trellant.Timeline(
        trellant.Url("file:///a.omf"), trellant.ProgramClock(Fraction(30_000, 1_001), RATE, label), (essence,),
        (track, replace(track, id="t2")), (event, replace(event, id="e2", track_id="t2")), (),
        explicit_program_start=label, composition_length=Fraction(0))


def replaced(elements, index, **values):
    changed = list(elements)
    changed[index] = replace(changed[index], **values)
    return tuple(changed)


class Rules(unittest.TestCase):
    def test_a_timeline_that_keeps_them_passes(self):
        self.assertIsNone(trellant.validate(timeline()))

    def break_by(self, code, place, **values):
        with self.assertRaises(trellant.TimelineError) as caught:
            trellant.validate(replace(timeline(), **values))
        self.assertEqual((caught.exception.code, caught.exception.place), (code, place))

    def break_track(self, code, **values):
        self.break_by(code, "track[1]", tracks=replaced(timeline().tracks, 1, **values))

    def break_essence(self, code, **values):
        self.break_by(code, "essence[0]", essences=replaced(timeline().essences, 0, **values))

    def break_event(self, code, **values):
        self.break_by(code, "event[1]", events=replaced(timeline().events, 1, **values))

    def break_label(self, code, **values):
        label = replace(timeline().clock.timeline_zero, **values)
        self.break_by(code, "program-start", explicit_program_start=label)
        self.break_by(code, "clock", clock=replace(timeline().clock, timeline_zero=label))

    def test_identities(self):
        self.break_track("empty-identity", id="")
        self.break_track("duplicate-identity", id="t1")
        self.break_essence("empty-identity", id="")
        self.break_by("duplicate-identity", "essence[1]", essences=timeline().essences * 2)
        self.break_event("empty-identity", id="")
        self.break_event("duplicate-identity", id="e1")

    def test_clock(self):
        clock = timeline().clock
        self.break_by("invalid-edit-rate", "clock", clock=replace(clock, edit_rate=Fraction(0)))
        for rate in (replace(RATE, exact_rate=Fraction(0)), replace(RATE, nominal_frames_per_second=0),
                     replace(RATE, nominal_frames_per_second=LARGEST // 86_400 + 1)):
            self.break_by("invalid-timecode-rate", "clock", clock=replace(clock, timecode_rate=rate))
        self.break_by("invalid-drop-frame-rate", "clock",
                      clock=replace(clock, timecode_rate=replace(RATE, nominal_frames_per_second=25)))

    def test_labels(self):
        for values in ({"hours": 24}, {"hours": -1}, {"minutes": 60}, {"minutes": -1}, {"seconds": 60},
                       {"seconds": -1}, {"frames": 30}, {"frames": -1}):
            with self.subTest(values):
                self.break_label("invalid-timecode-label", **values)
        self.break_label("skipped-drop-frame-label", minutes=1, frames=1)

    def test_composition(self):
        self.break_by("negative-composition-length", "composition", composition_length=Fraction(-1, 9))

    def test_sources(self):
        self.break_essence("invalid-sample-rate", sample_rate=Fraction(0))
        self.break_essence("invalid-sample-rate", sample_rate=Fraction(384_001))
        self.break_essence("invalid-channel-count", channel_count=0)
        self.break_essence("invalid-channel-count", channel_count=2**32)
        self.break_essence("invalid-bit-depth", bit_depth=0)

    def test_tracks(self):
        self.break_track("nonfinite-track-value", fixed_gain=float("nan"))
        self.break_track("nonfinite-track-value", fixed_pan=float("inf"))

    def test_points(self):
        for code, point in (("nonfinite-automation", AutomationPoint(Fraction(1), float("nan"))),
                            ("automation-time-outside-owner", AutomationPoint(Fraction(3, 2), 0.0)),
                            ("automation-time-outside-owner", AutomationPoint(Fraction(-1, 2), 0.0)),
                            ("unordered-automation", AutomationPoint(Fraction(1, 2), 0.0))):
            envelope = replace(ENVELOPE, points=POINTS + (point,))
            fade = replace(FADE, points=POINTS + (point,))
            with self.subTest(code):
                self.break_track(code, gain_automation=envelope)
                self.break_track(code, pan_automation=envelope)
                self.break_event(code, clip_gain_automation=envelope)
                self.break_event(code, fade_in=fade)
                self.break_event(code, fade_out=fade)

    def test_clips(self):
        self.break_event("missing-track-reference", track_id="s1")
        self.break_event("missing-essence-reference", essence_id="t1")
        self.break_event("negative-source-range", duration=Fraction(-1))
        self.break_event("negative-source-range", source_start_sample=-1)
        self.break_event("invalid-source-channel", source_channel=2)
        self.break_event("invalid-source-channel", source_channel=-1)
        self.break_event("nonfinite-clip-gain", fixed_clip_gain=float("-inf"))
        self.break_event("negative-fade-duration", fade_out=replace(FADE, duration=Fraction(-1)))

    def test_ends_that_64_bits_cannot_tell(self):
        # One second and a bit at 48000 Hz are 48001 samples.
        longer = Fraction(48_000_001, 48_000_000)
        self.break_event("source-range-overflow", duration=longer, source_start_sample=LARGEST - 48_000)
        fits = replaced(timeline().events, 1, duration=longer, source_start_sample=LARGEST - 48_001)
        self.assertIsNone(trellant.validate(replace(timeline(), events=fits)))
        self.break_event("timeline-end-overflow", timeline_start=Fraction(LARGEST), duration=Fraction(1, 10**6))
        # It lasts a second.
        self.break_event("timeline-end-overflow", timeline_start=Fraction(-2**63 - 2))


if __name__ == "__main__":
    unittest.main(verbosity=2)
