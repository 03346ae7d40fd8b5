# SPDX-License-Identifier: Apache-2.0
"""Labels and frames, paths of URLs, and what mute and solo let be heard."""
import unittest
from dataclasses import replace
from fractions import Fraction

import trellant
from trellant import TimecodeAddress, TimecodeRate
from validation_test import timeline

FPS25 = TimecodeRate(Fraction(25), 25, False)
DROP30 = TimecodeRate(Fraction(30_000, 1_001), 30, True)
DROP60 = TimecodeRate(Fraction(60_000, 1_001), 60, True)


def label(text, rate):
    hours, minutes, rest = text.replace(";", ":").split(":", 2)
    seconds, frames = rest.split(":")
    return TimecodeAddress(int(hours), int(minutes), int(seconds), int(frames), rate)


class Labels(unittest.TestCase):
    def test_known_frames(self):
        # An hour at 30 drop-frame is 108000 labels without 54 * 2; ten minutes are 18000 without 9 * 2.
        for text, rate, frame in (("00:00:00:00", FPS25, 0), ("01:00:00:00", FPS25, 90_000),
                                  ("00:01:00;02", DROP30, 1_800), ("00:00:59;29", DROP30, 1_799),
                                  ("00:10:00;00", DROP30, 17_982), ("01:00:00;00", DROP30, 107_892),
                                  ("00:01:00;04", DROP60, 3_600), ("00:10:00;00", DROP60, 35_964)):
            with self.subTest(text):
                self.assertEqual(label(text, rate).frame_number, frame)
                self.assertEqual(str(TimecodeAddress.from_frame_number(frame, rate)), text)

    def test_a_day_later_the_label_is_the_same(self):
        for rate, day in ((FPS25, 25 * 86_400), (DROP30, 24 * 107_892), (DROP60, 24 * 215_784)):
            for frame in (0, 1, 1_800, day - 1):
                self.assertEqual(TimecodeAddress.from_frame_number(frame + day, rate),
                                 TimecodeAddress.from_frame_number(frame, rate))
            self.assertEqual(str(TimecodeAddress.from_frame_number(day - 1, rate))[:8], "23:59:59")

    def test_frames_and_labels_are_each_others_reverse_around_every_minute(self):
        for rate in (DROP30, DROP60):
            minute = rate.nominal_frames_per_second * 60
            for start in range(0, 24 * 60 * minute, minute):
                frame = start - start // minute * rate.dropped_frames_per_minute
                for number in range(max(0, frame - 3), frame + 45):
                    address = TimecodeAddress.from_frame_number(number, rate)
                    self.assertFalse(address.is_skipped)
                    # Beyond a day's last frame labels begin anew.
                    self.assertEqual(address.frame_number, number)

    def test_labels_that_drop_frame_counting_leaves_out(self):
        for text, rate, is_skipped in (("00:01:00;01", DROP30, True), ("00:01:00;02", DROP30, False),
                                       ("00:10:00;01", DROP30, False), ("00:01:01;00", DROP30, False),
                                       ("00:59:00;03", DROP60, True), ("00:59:00;04", DROP60, False),
                                       ("00:01:00:01", FPS25, False)):
            with self.subTest(text):
                self.assertEqual(label(text, rate).is_skipped, is_skipped)

    def test_a_negative_frame_is_an_error(self):
        with self.assertRaises(ValueError):
            TimecodeAddress.from_frame_number(-1, FPS25)


class Clocks(unittest.TestCase):
    clock = trellant.ProgramClock(Fraction(25), FPS25, label("10:00:00:00", FPS25))

    def test_times_are_rounded_to_the_nearest_frame_halves_away_from_zero(self):
        for time, text in ((Fraction(0), "10:00:00:00"), (Fraction(1, 50), "10:00:00:01"),
                           (Fraction(1, 51), "10:00:00:00"), (Fraction(-1, 50), "09:59:59:24"),
                           (Fraction(-1, 51), "10:00:00:00"), (Fraction(3_600), "11:00:00:00"),
                           (Fraction(-40_000), "00:00:00:00")):
            with self.subTest(time):
                self.assertEqual(str(self.clock.address(time)), text)

    def test_a_bounce_starts_where_the_composition_says_or_at_the_minute(self):
        stated = label("10:00:30:00", FPS25)
        self.assertEqual(self.clock.bounce_start(Fraction(30), stated), stated)
        self.assertEqual(str(self.clock.bounce_start(Fraction(29), stated)), "10:00:00:00")
        self.assertEqual(str(self.clock.bounce_start(Fraction(75), None)), "10:01:00:00")
        drop = trellant.ProgramClock(Fraction(25), DROP30, label("00:01:10;00", DROP30))
        self.assertEqual(str(drop.bounce_start(Fraction(0), None)), "00:01:00;02")


class Hearing(unittest.TestCase):
    def audible(self, **tracks):
        whole = timeline()
        changed = tuple(replace(track, **tracks.get(track.id, {})) for track in whole.tracks)
        return [event.id for event in replace(whole, tracks=changed).audible_events()]

    def test_mute_and_solo(self):
        self.assertEqual(self.audible(), ["e1", "e2"])
        self.assertEqual(self.audible(t1={"muted": True}), ["e2"])
        self.assertEqual(self.audible(t1={"solo": True}), ["e1"])
        self.assertEqual(self.audible(t1={"solo": True, "muted": True}), [])

    def test_first_sound_and_start_of_the_bounce(self):
        whole = timeline()
        events = (replace(whole.events[0], clip_muted=True), replace(whole.events[1], timeline_start=Fraction(61)))
        later = replace(whole, events=events, explicit_program_start=None)
        self.assertEqual(later.first_audible_event_start(), 61)
        # 61 s at 29.97 frames per second are 1828 frames behind 01:00:00;00, so within minute 01.
        self.assertEqual(str(later.bounce_start()), "01:01:00;02")
        silent = replace(whole, tracks=tuple(replace(track, muted=True) for track in whole.tracks))
        self.assertIsNone(silent.first_audible_event_start())
        self.assertEqual(silent.bounce_start(), whole.explicit_program_start)


class Urls(unittest.TestCase):
    def test_paths_of_file_urls(self):
        for url, path in (("file:///a%20b/%C3%A9.wav", "/a b/é.wav"), ("FILE://LOCALHOST/a", "/a"), ("file:/a", "/a"),
                          ("file:///a?b#c", "/a"), ("file:///a b", "/a b"), ("file:////a", "//a"),
                          ("file:///%FF", "/\udcff"), ("file://host/a", None), ("http:///a", None), ("file:a", None),
                          ("/a", None), ("file:///%0", None), ("file:///%zz", None), ("file:///a%00", None),
                          ("file://localhosts/a", None), ("file:///a\nb", "/a\nb")):
            with self.subTest(url):
                self.assertEqual(trellant.path_of_file_url(url), path)

    def test_the_path_of_a_source(self):
        source = timeline().essences[0]
        self.assertIsNone(source.path)
        self.assertEqual(replace(source, file_url=trellant.Url("file:///a.wav")).path, "/a.wav")


if __name__ == "__main__":
    unittest.main(verbosity=2)
