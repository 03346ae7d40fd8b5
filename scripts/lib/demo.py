"""Runs trellant-omf on every example and prints its result for a person.

usage: demo.py WORKER EXAMPLES OUTPUT
"""

import json
import os
import shutil
import subprocess
import sys
from fractions import Fraction
from urllib.parse import unquote, urlparse


def fraction(value):
    return Fraction(value["numerator"], value["denominator"])


def frames_of(seconds, rate):
    """Whole frames, halves away from zero, as the program clock counts them."""
    exact = seconds * fraction(rate["exactRate"])
    return int(exact + Fraction(1, 2)) if exact >= 0 else -int(-exact + Fraction(1, 2))


def dropped_per_minute(rate):
    if not rate["dropFrame"]:
        return 0
    return 4 if rate["nominalFramesPerSecond"] == 60 else 2


def label(frame, rate):
    """The timecode label of a frame number."""
    fps = rate["nominalFramesPerSecond"]
    dropped = dropped_per_minute(rate)
    if dropped:
        tens, rest = divmod(frame, fps * 600 - 9 * dropped)
        frame += 9 * dropped * tens
        if rest >= dropped:
            frame += dropped * ((rest - dropped) // (fps * 60 - dropped))
    seconds, frames = divmod(frame, fps)
    separator = ";" if rate["dropFrame"] else ":"
    return "%02d:%02d:%02d%s%02d" % (
        seconds // 3600 % 24, seconds // 60 % 60, seconds % 60, separator, frames)


def frame_of_address(address):
    rate = address["rate"]
    minutes = address["hours"] * 60 + address["minutes"]
    count = (minutes * 60 + address["seconds"]) * rate["nominalFramesPerSecond"] + address["frames"]
    return count - dropped_per_minute(rate) * (minutes - minutes // 10)


def path_of(url):
    return unquote(urlparse(url).path)


def name_of_curve(curve):
    name = next(iter(curve))
    return curve[name].get("identifier", name)


def fade_text(fade, rate):
    return "%s over %s" % (name_of_curve(fade["curve"]), label(frames_of(fraction(fade["duration"]), rate), rate))


def clip_extras(event, rate):
    extras = []
    if event["fixedClipGain"] != 1:
        extras.append("gain x%.3g" % event["fixedClipGain"])
    if "clipGainAutomation" in event:
        extras.append("gain automation, %d points" % len(event["clipGainAutomation"]["points"]))
    for key, word in (("fadeIn", "fade in"), ("fadeOut", "fade out")):
        if key in event:
            extras.append("%s %s" % (word, fade_text(event[key], rate)))
    return "  (%s)" % ", ".join(extras) if extras else ""


def show_tracks(timeline):
    clock = timeline["clock"]
    rate = clock["timecodeRate"]
    zero = frame_of_address(clock["timelineZero"])
    sources = {essence["id"]: essence for essence in timeline["essences"]}
    for track in timeline["tracks"]:
        pan = ", pan %.2f (0 left, 1 right)" % track["fixedPan"] if "fixedPan" in track else ""
        print("  Track %d %s%s" % (track["index"] + 1, track.get("name", "(no name)"), pan))
        for event in (e for e in timeline["events"] if e["trackID"] == track["id"]):
            start = fraction(event["timelineStart"])
            print("    %s  %s  %-16s from %s%s" % (
                label(max(zero + frames_of(start, rate), 0), rate),
                label(frames_of(fraction(event["duration"]), rate), rate),
                event.get("clipName", "(no name)"),
                sources[event["essenceID"]].get("sourceName", event["essenceID"]),
                clip_extras(event, rate)))


def channels_text(count):
    return {1: "mono", 2: "stereo"}.get(count, "%d channels" % count)


def show_sources(timeline):
    print("  Sources")
    for essence in timeline["essences"]:
        kind = "embedded" if essence["embedded"] else "external"
        place = os.path.relpath(path_of(essence["fileURL"])) if "fileURL" in essence else "NOT FOUND"
        bits = "%d bits" % essence["bitDepth"] if "bitDepth" in essence else "bits unknown"
        print("    %-16s %s, %s Hz, %s, %s, %s" % (
            essence.get("sourceName", essence["id"]), kind,
            fraction(essence["sampleRate"]), bits, channels_text(essence["channelCount"]), place))


def show_losses(timeline):
    losses = timeline["unsupportedFeatures"]
    print("  Losses: %s" % (len(losses) or "none"))
    for loss in losses:
        print("    %s\n      at %s" % (loss["description"], loss.get("objectPath", "(no place)")))


def show(timeline):
    clock = timeline["clock"]
    rate = clock["timecodeRate"]
    length = label(frames_of(fraction(timeline["compositionLength"]), rate), rate) \
        if "compositionLength" in timeline else "unknown"
    print("  Composition %s, length %s" % (timeline.get("compositionName", "(no name)"), length))
    print("  Clock starts at %s, %s frames per second%s" % (
        label(frame_of_address(clock["timelineZero"]), rate), fraction(rate["exactRate"]),
        ", drop-frame" if rate["dropFrame"] else ""))
    print("  Clips: start, length, name, source")
    show_tracks(timeline)
    show_sources(timeline)
    show_losses(timeline)


def run(worker, example, output):
    name = os.path.splitext(os.path.basename(example))[0]
    audio = os.path.join(output, name)
    shutil.rmtree(audio, ignore_errors=True)
    request = json.dumps({
        "protocolVersion": 1,
        "operation": "extractAndInspect",
        "aafPath": example,
        "workDirectory": audio,
        "mediaSearchDirectory": os.path.dirname(example),
        "recoverProToolsTrueFades": False,
        "removeProToolsSampleAccurateEditFragments": False})
    print("\n== %s" % example)
    print("  Request on standard input of %s:\n    %s" % (worker, request))
    answer = subprocess.run([worker], input=request.encode(), capture_output=True)
    if answer.returncode != 0:
        sys.exit("trellant-omf ended with status %d: %s" % (
            answer.returncode, answer.stderr.decode(errors="replace").splitlines()[-1]))
    whole = os.path.join(output, name + ".json")
    with open(whole, "wb") as file:
        file.write(answer.stdout)
    show(json.loads(answer.stdout)["timeline"])
    print("  Audio is in %s, the whole answer in %s" % (audio, whole))


def main():
    worker, examples, output = sys.argv[1:]
    os.makedirs(output, exist_ok=True)
    for name in sorted(os.listdir(examples)):
        if name.endswith(".omf"):
            run(worker, os.path.join(examples, name), output)


if __name__ == "__main__":
    main()
