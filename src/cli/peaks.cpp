// SPDX-License-Identifier: Apache-2.0
// `trellant peaks`: the waveforms of audio files, as data that tools draw them from.
#include "commands.h"
#include "look/console_progress.h"
#include "terminal/deliver.h"
#include "terminal/failure_line.h"
#include "terminal/json_line.h"

#include <trellant/base/byte_load.h>
#include <trellant/base/printable_path.h>
#include <trellant/client/errors.h>
#include <trellant/extraction/extraction.h>
#include <trellant/extraction/staging.h>
#include <trellant/io/random_access_file.h>
#include <trellant/listening/waveform_file.h>

#include <algorithm>
#include <filesystem>
#include <iterator>
#include <optional>
#include <stdexcept>
#include <system_error>

namespace trellant::cli {

namespace {

constexpr std::uint64_t pieceBytes = 65'536;

/// The numbers behind the header of a waveform, one after the other and none before it is wanted:
/// there may be more of them than memory should hold.
class WaveformValues {
  public:
    class Iterator {
      public:
        Iterator(const RandomAccessFile& file, std::size_t valueBytes)
            : file_(file), valueBytes_(valueBytes) {}

        [[nodiscard]] std::int64_t operator*() {
            if (next_ < pieceAt_ || next_ + valueBytes_ > pieceAt_ + piece_.size()) {
                pieceAt_ = next_;
                piece_ = file_.read(
                    next_, static_cast<std::int64_t>(std::min(pieceBytes, file_.size() - next_)));
            }
            const std::byte* const at = piece_.data() + (next_ - pieceAt_);
            return valueBytes_ == 1 ? static_cast<std::int8_t>(*at)
                                    : static_cast<std::int16_t>(
                                          loadUnsigned<std::uint16_t>(at, OMFByteOrder::little));
        }
        Iterator& operator++() {
            next_ += valueBytes_;
            return *this;
        }
        [[nodiscard]] bool operator!=(std::default_sentinel_t /*end*/) const {
            return next_ + valueBytes_ <= file_.size();
        }

      private:
        const RandomAccessFile& file_;
        std::size_t valueBytes_;
        std::uint64_t next_ = audio::waveformHeaderBytes;
        std::uint64_t pieceAt_ = 0;
        Bytes piece_;
    };

    WaveformValues(const RandomAccessFile& file, audio::PeakBits bits)
        : file_(file), valueBytes_(bits == audio::PeakBits::eight ? 1 : 2) {}

    [[nodiscard]] Iterator begin() const { return {file_, valueBytes_}; }
    [[nodiscard]] static std::default_sentinel_t end() { return {}; }

  private:
    const RandomAccessFile& file_;
    std::size_t valueBytes_;
};

class PeakWriter {
  public:
    PeakWriter(const PeaksOptions& options, std::string converter, Console& console,
               const StopToken& stop)
        : options_(options),
          converter_(std::move(converter)),
          console_(console),
          stop_(stop),
          staging_(std::filesystem::absolute(std::filesystem::temp_directory_path()).native()),
          delivery_(options.destination, console) {}

    /// False for a file that could not be read, of which has been told why.
    [[nodiscard]] bool add(const std::string& file) {
        delivery_.protect(file);
        const std::string made = staging_.file("waveform");
        auto failure = whyNone(file, made);
        if (!failure) {
            const RandomAccessFile waveform(made);
            options_.json ? writeLine(file, waveform) : writeData(waveform);
            std::error_code ignored;
            std::filesystem::remove(made, ignored);
            hasData_ = true;
            return true;
        }
        console_.endBar();
        console_.error(printablePath(file) + ": " + *failure);
        if (options_.json) {
            delivery_.write(failureLine(file, *failure));
            hasData_ = true;
        }
        return false;
    }
    /// Without data there is no file.
    [[nodiscard]] bool finish() { return !hasData_ || delivery_.finish(); }

  private:
    /// Why there is no waveform at `made`; absent when there is.
    std::optional<std::string> whyNone(const std::string& file, const std::string& made) {
        std::error_code ignored;
        if (!std::filesystem::is_regular_file(file, ignored)) {
            return std::filesystem::exists(file, ignored) ? "this is no file"
                                                          : "there is no such file";
        }
        ConsoleProgress progress(console_, stop_);
        auto failure =
            listening::writeWaveformFile(converter_, std::filesystem::absolute(file).native(), made,
                                         options_.samplesPerPair, options_.bits, progress);
        console_.endBar();
        return failure;
    }

    void writeData(const RandomAccessFile& waveform) {
        for (std::uint64_t at = 0; at < waveform.size(); at += pieceBytes) {
            const Bytes piece = waveform.read(
                at, static_cast<std::int64_t>(std::min(pieceBytes, waveform.size() - at)));
            delivery_.write({reinterpret_cast<const char*>(piece.data()), piece.size()});
        }
        delivery_.flush();
    }

    void writeLine(const std::string& file, const RandomAccessFile& waveform) {
        const Bytes head = waveform.read(0, audio::waveformHeaderBytes);
        const auto field = [&head](std::size_t index) {
            constexpr std::size_t fieldBytes = 4;
            return std::uint64_t{loadUnsigned<std::uint32_t>(head.data() + fieldBytes * index,
                                                             OMFByteOrder::little)};
        };
        JsonLine line(delivery_);
        line.text("file", fileForPrograms(file))
            .count("version", field(0))
            .count("channels", field(5))
            .count("sample_rate", field(2))
            .count("samples_per_pixel", field(3))
            .count("bits", static_cast<std::uint64_t>(options_.bits))
            .count("length", field(4))
            .integers("data", WaveformValues(waveform, options_.bits));
        line.end();
        delivery_.flush();
    }

    const PeaksOptions& options_;
    std::string converter_;
    Console& console_;
    const StopToken& stop_;
    Staging staging_;
    Delivery delivery_;
    bool hasData_ = false;
};

/// Why the command line cannot be meant; absent when it can.
std::optional<std::string> wrongUse(const PeaksOptions& options, const Console& console) {
    if (options.json) {
        return std::nullopt;
    }
    if (options.files.size() > 1) {
        return "waveform data is of one audio file; --json takes several";
    }
    if (options.destination.path == "-" && console.outIsTerminal()) {
        return "waveform data is not for a terminal. Name a file with -o, or ask for --json";
    }
    return std::nullopt;
}

}  // namespace

ExitStatus runPeaks(const PeaksOptions& options, Console& console, const StopToken& stop) {
    if (const auto message = wrongUse(options, console)) {
        console.error(*message);
        return ExitStatus::wrongUse;
    }
    if (!mayDeliver(options.destination, options.files, console)) {
        return ExitStatus::wrongUse;
    }
    const auto converter = options.converter ? options.converter : installedWaveConverter();
    if (!converter) {
        console.error(
            "the program trellant-wav, which reads audio files, is missing. It belongs to this "
            "one; please install Trellant again");
        return ExitStatus::fileFailed;
    }
    ExitStatus status = ExitStatus::done;
    PeakWriter writer(options, *converter, console, stop);
    try {
        for (const std::string& file : options.files) {
            status = writer.add(file) ? status : ExitStatus::fileFailed;
        }
    } catch (const AAFCancellationError&) {
        console.endBar();
        console.error("cancelled");
        return ExitStatus::fileFailed;
    }
    return writer.finish() ? status : ExitStatus::fileFailed;
}

}  // namespace trellant::cli
