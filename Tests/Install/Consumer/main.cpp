// Draws with a pass of the shared layer, in a task of its queue, into a target whose size its math tells.

#include "Plugins/Shared/GL/AEOpenGLContext.h"
#include "Plugins/Shared/GL/AEOpenglMainFrameBuffer.h"
#include "Plugins/Shared/GL/BackgroundRender.h"
#include "Plugins/Shared/Helper/IdleQueue.h"
#include "Plugins/Shared/Math/Vec2.h"

#include <glbinding/gl/gl.h>

#include <array>
#include <cmath>
#include <cstdio>

using namespace Ombrique::GaussianBlur;
using Pixel = std::array<float, 4>;

static Pixel drawnPixel(const Vec2& size, const Pixel& host) {
    AEOpenGLContext context(nullptr);
    AEOpenglMainFrameBuffer frameBuffer;
    frameBuffer.prepare(std::lround(size.x), std::lround(size.y), false);
    const unsigned source = frameBuffer.createFloatRenderTexture(Vec2(1, 1), false, false);
    const unsigned target = frameBuffer.createFloatRenderTexture(false, false);
    gl::glBindTexture(gl::GL_TEXTURE_2D, source);
    gl::glTexSubImage2D(gl::GL_TEXTURE_2D, 0, 0, 0, 1, 1, gl::GL_RGBA, gl::GL_FLOAT, host.data());
    gl::glViewport(0, 0, frameBuffer.width(), frameBuffer.height());
    frameBuffer.pushNormalRenderContext(target);
    BackgroundRender pass;
    pass.draw(source, 1.0F);
    Pixel drawn{};
    gl::glReadPixels(frameBuffer.width() - 1, frameBuffer.height() - 1, 1, 1, gl::GL_RGBA, gl::GL_FLOAT, drawn.data());
    frameBuffer.popNormalRenderContext();
    frameBuffer.destory();
    return drawn;
}

int main() {
    IdleQueue queue;
    Pixel drawn{};
    // From the host's alpha, red, green, blue to premultiplied red, green, blue, alpha; no digit is lost.
    const Pixel expected{0.25F, 0.125F, 0.375F, 0.5F};
    queue.async([&drawn] { drawn = drawnPixel(Vec2(3, -4).rotateRound(90.0, Vec2()), {0.5F, 0.5F, 0.25F, 0.75F}); });
    while (queue.hasTask())
        queue.updateQueue();
    std::printf("drew %g %g %g %g\n", drawn[0], drawn[1], drawn[2], drawn[3]);
    return drawn == expected ? 0 : 1;
}
