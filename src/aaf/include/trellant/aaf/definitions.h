// SPDX-License-Identifier: Apache-2.0
// What a file may refer to in its Dictionary. The Dictionary that is written holds all of these.
#pragma once

namespace [[gnu::visibility("default")]] trellant {
namespace aaf {

/// DataDefinitions: of what kind the material of a slot is.
enum class DataKind { sound, timecode, descriptiveMetadata };

/// OperationDefinitions, all with one input but the dissolve, which has two.
enum class Operation { monoAudioGain, monoAudioPan, monoAudioDissolve };

/// ParameterDefinitions, all of type Rational.
enum class ParameterKind {
    /// Of monoAudioGain: a factor, 1 leaves the level as it is.
    amplitude,
    /// Of monoAudioPan: 0 left, 1/2 middle, 1 right.
    pan,
    /// Of monoAudioDissolve: 0 the outgoing segment, 1 the incoming one.
    level,
};

/// InterpolationDefinitions: how a value goes from one control point to the next.
enum class Interpolation { linear, constant, logarithmic, power };

/// ContainerDefinitions: what holds the essence of a file source.
enum class Container {
    /// A file of its own, or a stream of this file.
    aaf,
    /// A file that knows nothing of AAF.
    external,
    /// Files of key, length and value.
    aafKLV,
};

}  // namespace aaf
}  // namespace trellant
