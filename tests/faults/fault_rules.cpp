// SPDX-License-Identifier: Apache-2.0
#include "fault_rules.h"

#include "run_judge.h"

#include <cerrno>

namespace trellant::testing {

namespace {

using ::testing::AssertionResult;

/// Of the file's reads these are the ones that open the container: its tail and its table.
constexpr std::size_t readsOfOpening = 2;

AssertionResult judgeReading(const RunJudge& judged, const Scene& scene, const SeenCall& seen,
                             int error) {
    if (error == EINTR) {
        return judged.same();
    }
    if (seen.ordinal < readsOfOpening || seen.isWithinCopy) {
        return judged.failed(refusal("read", scene.source(), error));
    }
    // A small value is read again; the head of embedded audio is not, when it stays where it is.
    return judged.oneOf({judged.same(), judged.lost(Loss::embeddedFormat)});
}

AssertionResult judgeRequest(const RunJudge& judged, const SeenCall& seen, int error) {
    if (error == EINTR || seen.ordinal > 0) {
        return judged.same();
    }
    return judged.rejected("trellant-omf: empty request on stdin\n");
}

AssertionResult judgeFolder(const RunJudge& judged, const Scene& scene, const SeenCall& seen,
                            int error) {
    if (seen.path != scene.work() || judged.wasThere("work")) {
        // What cannot be looked at may be a file in the way.
        return seen.kind == CallKind::folderCreation
                   ? judged.same()
                   : judged.failed(refusal("create directory", scene.work(),
                                           seen.path == scene.work() ? EEXIST : ENOTDIR));
    }
    return judged.failed(refusal("create directory", scene.work(), error));
}

AssertionResult judgeResult(const RunJudge& judged, int error) {
    if (error == EINTR) {
        return judged.same();
    }
    if (error == EPIPE) {
        return judged.quiet("");
    }
    return judged.failed(refusal("write", "standard output", error));
}

AssertionResult judgeMemory(const RunJudge& judged) {
    return judged.oneOf({judged.same(), judged.lost(Loss::searchedFile),
                         judged.failed("trellant-omf: unexpected failure: out of memory\n")});
}

AssertionResult judgeProbe(const RunJudge& judged, const Scene& scene, const SeenCall& seen,
                           int error) {
    if (error == EINTR) {
        return judged.same();
    }
    if (seen.path == scene.searchedFile()) {
        return judged.lost(Loss::searchedFormat);
    }
    return judged.lost(seen.path == scene.namedFile() ? Loss::namedFormat : Loss::embeddedFormat);
}

}  // namespace

std::vector<int> errorsOf(const SeenCall& seen) {
    switch (seen.kind) {
        case CallKind::startup:
        case CallKind::memory:
            return {ENOMEM};
        case CallKind::signals:
            return {EINVAL};
        case CallKind::streamCheck:
            return {EBADF};
        case CallKind::memoryLook:
        case CallKind::memoryRead:
            return {EINTR, EACCES, EPERM, EMFILE, ENFILE, EIO, ENOMEM, ENOENT, ENODEV};
        case CallKind::confinement:
            return {ENOSYS, EPERM, EINVAL, ENOMEM, EACCES, EMFILE};
        case CallKind::requestRead:
            return {EINTR, EIO, EAGAIN, ENOMEM};
        case CallKind::lineWrite:
        case CallKind::resultWrite:
            return {EINTR, EPIPE, EIO, ENOSPC, EAGAIN};
        case CallKind::folderCreation:
            return {EACCES, EPERM, EROFS, ENOSPC, EDQUOT, EIO, ENOMEM};
        case CallKind::sourceOpen:
        case CallKind::probeOpen:
            return {EINTR, EACCES, EPERM, EMFILE, ENFILE, EIO, ENOMEM, ENOENT, ELOOP};
        case CallKind::searchOpen:
            return {EACCES, EPERM, EMFILE, ENFILE, EIO, ENOMEM, ENOENT, ELOOP};
        case CallKind::sourceRead:
        case CallKind::probeRead:
            return {EINTR, EIO, ENOMEM, ESTALE};
        case CallKind::folderLook:
        case CallKind::sourceLook:
        case CallKind::nameLook:
        case CallKind::probeLook:
        case CallKind::mediaLook:
        case CallKind::searchLook:
        case CallKind::searchRead:
            return {EACCES, EIO, ENOMEM, ESTALE};
        case CallKind::fileCreation:
            return {EINTR, EACCES, EPERM, EROFS, EMFILE, ENFILE, ENOSPC, EDQUOT, EIO, ENOMEM};
        case CallKind::kernelCopy:
            return {EINTR, ENOSYS, EXDEV, EINVAL, EIO, ENOSPC, ENOMEM, EPERM};
        case CallKind::fileWrite:
            return {EINTR, ENOSPC, EDQUOT, EFBIG, EIO, ENOMEM, EPERM};
        case CallKind::closing:
            return {EINTR, EIO, ENOSPC, EDQUOT};
        case CallKind::infallible:
        case CallKind::unknown:
            return {};
    }
    return {};
}

AssertionResult judge(const Scene& scene, const Undisturbed& undisturbed,
                      const std::map<std::string, std::string>& before, const Fault& fault,
                      const TracedRun& traced) {
    const RunJudge judged(scene, undisturbed, before, traced);
    const SeenCall& seen = fault.seen;
    const int error = fault.errorNumber;
    if (const auto harm = judged.harm(fault); !harm) {
        return harm;
    }
    switch (seen.kind) {
        case CallKind::startup:
            return judged.oneOf({judged.same(), judged.silent()});
        case CallKind::memory:
            return judgeMemory(judged);
        case CallKind::signals:
        case CallKind::memoryLook:
        case CallKind::memoryRead:
        case CallKind::confinement:
        case CallKind::kernelCopy:
        case CallKind::closing:
            return judged.same();
        case CallKind::streamCheck:
            return judged.mute();
        case CallKind::requestRead:
            return judgeRequest(judged, seen, error);
        case CallKind::lineWrite:
            return error == EINTR ? judged.same()
                                  : judged.quiet(seen.isAfterResult ? undisturbed.output : "");
        case CallKind::resultWrite:
            return judgeResult(judged, error);
        case CallKind::folderCreation:
        case CallKind::folderLook:
            return judgeFolder(judged, scene, seen, error);
        case CallKind::sourceOpen:
            return error == EINTR ? judged.same()
                                  : judged.failed(refusal("open", scene.source(), error));
        case CallKind::sourceLook:
            return seen.ordinal > 0 ? judged.same()
                                    : judged.failed(refusal("open", scene.source(), error));
        case CallKind::sourceRead:
            return judgeReading(judged, scene, seen, error);
        case CallKind::nameLook:
            return judged.oneOf({judged.same(), judged.renamed()});
        case CallKind::fileCreation:
            return error == EINTR ? judged.same()
                                  : judged.failed(refusal("create", seen.path, error));
        case CallKind::fileWrite:
            return error == EINTR ? judged.same()
                                  : judged.failed(refusal("write", seen.path, error));
        case CallKind::probeOpen:
        case CallKind::probeLook:
        case CallKind::probeRead:
            return judgeProbe(judged, scene, seen, error);
        case CallKind::mediaLook:
            return judged.lost(Loss::namedFile);
        case CallKind::searchOpen:
            return judged.lost(Loss::searchedFile);
        case CallKind::searchLook:
        case CallKind::searchRead:
            return judged.oneOf({judged.same(), judged.lost(Loss::searchedFile)});
        case CallKind::infallible:
        case CallKind::unknown:
            break;
    }
    return ::testing::AssertionFailure() << "no rule for this call";
}

}  // namespace trellant::testing
