#pragma once

#include "Platform/OpenGL/CGLContextObj.h"

class NSOpenGLContext;

/// Remembers what the host had current on the calling thread, and puts it back when told to. One object serves one
/// command, on one thread.
///
/// The host's context is remembered at both levels of the platform, since a host may work on either. Where nothing was
/// current, nothing is put back, and what the plug-in made current stays so.
///
/// The accessors have the names of the properties, so the fields behind them begin with an underscore.
class SaveRestoreGLContextMac {
public:
    /// Remembers what is current now.
    SaveRestoreGLContextMac();
    SaveRestoreGLContextMac(const SaveRestoreGLContextMac&) = delete;
    SaveRestoreGLContextMac& operator=(const SaveRestoreGLContextMac&) = delete;
    /// Gives up the reference to the remembered context. It doesn't restore.
    ~SaveRestoreGLContextMac();

    /// Puts back what was remembered, once: later calls do nothing. The context that it replaces is flushed where its
    /// frame buffer is complete. The binding of OpenGL's functions isn't told.
    void restore();

    /// Whether restore has run.
    bool mRestored() const { return _mRestored; }
    void setMRestored(bool restored) { _mRestored = restored; }

    /// The platform's context that was current; null for none, or one that the platform didn't make. Held by a
    /// reference; setting it takes one.
    NSOpenGLContext* mContext() const { return _mContext; }
    void setMContext(NSOpenGLContext* context);

    /// The same at the lower level, which sees every context; nullptr for none. Not held.
    CGLContextObj mRC() const { return _mRC; }
    void setMRC(CGLContextObj context) { _mRC = context; }

private:
    bool _mRestored = false;
    NSOpenGLContext* _mContext = nullptr;
    CGLContextObj _mRC;
};
