#pragma once

/// What the tests' own plug-in does with a frame, told to it by its first slider. Good adds the second slider's value
/// to each byte of the input; all others do the same, and one thing that a careful host objects to.
enum class Conduct {
    Good,
    KeepSuite,
    ReleaseOtherVersion,
    KeepParameter,
    CheckInTwice,
    AskForMissingParameter,
    KeepHandle,
    DisposeLockedHandle,
    OverrunHandle,
    UseDisposedHandle,
    UnlockTwice,
    KeepMemoryHandle,
    WriteIntoPadding,
    WriteBeforePicture,
    WriteBehindPicture,
    WriteIntoInput,
    WriteIntoInputPadding,
    ChangeLayer,
    WriteLongMessage,
    UseForeignEffectRef,
    Throw,
    ReturnError,
};
