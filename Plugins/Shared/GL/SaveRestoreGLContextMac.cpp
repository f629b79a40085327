#include "Plugins/Shared/GL/SaveRestoreGLContextMac.h"

#include "Platform/OpenGL/CGLCurrent.h"
#include "Platform/OpenGL/NSOpenGLContext.h"
#include "Plugins/Shared/GL/AEOpenGLContext.h"

using Ombrique::GaussianBlur::AEOpenGLContext;

SaveRestoreGLContextMac::SaveRestoreGLContextMac() {
    setMContext(NSOpenGLContext::currentContext());
    _mRC = CGLGetCurrentContext();
}

SaveRestoreGLContextMac::~SaveRestoreGLContextMac() { setMContext(nullptr); }

void SaveRestoreGLContextMac::setMContext(NSOpenGLContext* context) {
    if (context)
        context->retain();
    if (_mContext)
        _mContext->release();
    _mContext = context;
}

void SaveRestoreGLContextMac::restore() {
    if (_mRestored)
        return;
    if (_mContext && NSOpenGLContext::currentContext() != _mContext)
        _mContext->makeCurrentContext();
    if (_mRC != nullptr)
        AEOpenGLContext::makeCurrentFlush(_mRC);
    _mRestored = true;
}
