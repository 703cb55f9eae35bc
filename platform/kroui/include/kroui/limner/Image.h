#pragma once

#include "krocore/utility/RefCountedObject.h"
#include "kroui/limner/Types.h"

#include <boost/intrusive_ptr.hpp>

#include <filesystem>
#include <span>

namespace kroui::limner {

// A picture of premultiplied 32-bit pixels (native-endian 0xAARRGGBB, rows of Stride() bytes). Made by a supplier.
class Image : public krocore::utility::RefCountedObject {
public:
    virtual int PixelWidth() const = 0;
    virtual int PixelHeight() const = 0;
    virtual int Stride() const = 0;
    // Pixels a view unit; the picture's size in view units is its pixels divided by this.
    virtual float Scale() const = 0;
    virtual std::span<const std::uint32_t> Pixels() const = 0;

    Size ViewSize() const {
        return {static_cast<float>(PixelWidth()) / Scale(), static_cast<float>(PixelHeight()) / Scale()};
    }
};

using ImagePtr = boost::intrusive_ptr<const Image>;

} // namespace kroui::limner
