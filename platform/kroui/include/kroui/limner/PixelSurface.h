#pragma once

#include "kroui/limner/Surface.h"

#include <cstdint>
#include <memory>

namespace kroui::limner {

class CairoSupplier;

// A surface of opaque pixels, 0xFFRRGGBB in rows of Stride() bytes.
class PixelSurface : public Surface {
public:
    // The supplier lives longer than the surface.
    explicit PixelSurface(const CairoSupplier& supplier);
    ~PixelSurface() override;
    PixelSurface(const PixelSurface&) = delete;
    PixelSurface& operator=(const PixelSurface&) = delete;

    void SetSize(Size size, float scale) override;
    int PixelWidth() const override;
    int PixelHeight() const override;
    float Scale() const override;
    void Draw(const Rect& part, const boost::function<void(Limner&)>& draw) override;

    int Stride() const;
    const std::uint32_t* Pixels() const;
    // A picture with a copy of the pixels.
    ImagePtr Snapshot() const;

private:
    struct Buffer;
    std::unique_ptr<Buffer> fBuffer;
};

} // namespace kroui::limner
