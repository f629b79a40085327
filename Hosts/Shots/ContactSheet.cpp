#include "Hosts/Shots/ContactSheet.h"

#include "Hosts/Pictures/PictureReader.h"
#include "Hosts/Pictures/PictureWriter.h"
#include "Hosts/Shots/RenderFrame.h"

#include <OpenImageIO/imagebufalgo.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <sstream>

namespace Ombrique::Hosts {

namespace {

constexpr int kLongestSideOfCell = 320;
constexpr int kGap = 12;
constexpr int kTextSize = 15;
constexpr int kLabelHeight = 24;
constexpr const char* kFont = "DejaVuSans";
constexpr PF_Pixel8 kBackground{255, 46, 46, 46};
constexpr std::array<float, 3> kTextColour{0.86f, 0.86f, 0.86f};
/// The largest sheet, in cells: it is meant to be looked at.
constexpr std::size_t kMostCells = 400;

/// The picture with its longest side at `kLongestSideOfCell`; as it is where it is smaller. Colours are averaged by
/// their alpha, so that what doesn't show doesn't count.
World reduced(const World& picture) {
    const double scale =
        std::min(1.0, static_cast<double>(kLongestSideOfCell) / std::max(picture.width(), picture.height()));
    const auto side = [scale](int length) { return std::max(1, static_cast<int>(std::lround(length * scale))); };
    OIIO::ImageBuf whole(OIIO::ImageSpec(picture.width(), picture.height(), 4, OIIO::TypeDesc::FLOAT));
    for (OIIO::ImageBuf::Iterator<float> to(whole); !to.done(); ++to) {
        const auto from = picture.pixel<PF_Pixel8>(to.x(), to.y());
        const float alpha = static_cast<float>(from.alpha) / 255.0f;
        to[0] = static_cast<float>(from.red) * alpha;
        to[1] = static_cast<float>(from.green) * alpha;
        to[2] = static_cast<float>(from.blue) * alpha;
        to[3] = alpha;
    }
    const OIIO::ImageBuf small = OIIO::ImageBufAlgo::resize(
        whole, "triangle", 0.0f, OIIO::ROI(0, side(picture.width()), 0, side(picture.height())));
    World result(small.spec().width, small.spec().height);
    for (OIIO::ImageBuf::ConstIterator<float> from(small); !from.done(); ++from) {
        const float weight = from[3] > 0.0f ? 1.0f / (from[3] * 255.0f) : 0.0f;
        result.setPixel(from.x(), from.y(),
                        PF_Pixel8{quantised(from[3]), quantised(from[0] * weight), quantised(from[1] * weight),
                                  quantised(from[2] * weight)});
    }
    return result;
}

/// Five values, a fortieth of the slider's range apart, with the default in their middle.
std::vector<double> valuesAroundDefault(const Slider& slider) {
    std::vector<double> values;
    for (int step = -2; step <= 2; ++step)
        values.push_back(std::clamp(slider.defaultValue + step * (slider.maximum - slider.minimum) / 40.0,
                                    slider.minimum, slider.maximum));
    return values;
}

/// One direction of the grid.
struct Axis {
    const Slider* slider = nullptr;
    std::vector<double> values{0.0};

    Axis(const std::vector<Slider>& sliders, std::size_t place, const std::map<int, std::vector<double>>& lists) {
        if (place >= sliders.size())
            return;
        slider = &sliders[place];
        const auto list = lists.find(slider->index);
        values = list != lists.end() ? list->second : valuesAroundDefault(*slider);
    }

    void set(ParameterValues& all, double value) const {
        if (slider)
            all.insert_or_assign(slider->index, value);
    }
    /// "contrast 1.25", or nothing where there is no slider.
    std::string label(double value) const {
        std::ostringstream text;
        if (slider)
            text << slider->word() << " " << value;
        return text.str();
    }
};

void layOver(World& sheet, const World& cell, int left, int top) {
    for (int y = 0; y < cell.height(); ++y)
        for (int x = 0; x < cell.width(); ++x) {
            const auto pixel = cell.pixel<PF_Pixel8>(x, y);
            const auto mixed = [&pixel](int colour, int below) {
                return static_cast<std::uint8_t>((colour * pixel.alpha + below * (255 - pixel.alpha) + 127) / 255);
            };
            sheet.setPixel(left + x, top + y,
                           PF_Pixel8{255, mixed(pixel.red, kBackground.red), mixed(pixel.green, kBackground.green),
                                     mixed(pixel.blue, kBackground.blue)});
        }
}

/// A line of text in the middle of the `width` pixels from `left` on.
void putLabel(World& sheet, const std::string& text, int left, int top, int width) {
    OIIO::ImageBuf line(OIIO::ImageSpec(width, kLabelHeight, 3, OIIO::TypeDesc::FLOAT));
    const float grey = static_cast<float>(kBackground.red) / 255.0f;
    OIIO::ImageBufAlgo::fill(line, {grey, grey, grey});
    if (!OIIO::ImageBufAlgo::render_text(line, width / 2, kTextSize + 2, text, kTextSize, kFont, kTextColour,
                                         OIIO::ImageBufAlgo::TextAlignX::Center))
        throw Failure("labels can't be drawn: the font " + std::string(kFont) + " isn't installed (" +
                      firstErrorLine(line.geterror(), "no reason given") + ")");
    for (OIIO::ImageBuf::ConstIterator<float> from(line); !from.done(); ++from)
        sheet.setPixel(left + from.x(), top + from.y(),
                       PF_Pixel8{255, quantised(from[0]), quantised(from[1]), quantised(from[2])});
}

PictureOrigin originOfSheet(const World& sheet) {
    PictureOrigin origin;
    origin.spec = OIIO::ImageSpec(sheet.width(), sheet.height(), 3, OIIO::TypeDesc::UINT8);
    origin.colours = {0, 1, 2};
    origin.colourCount = 3;
    return origin;
}

/// The picture under one pair of values. `name` is the file that it came from.
World corrected(CheckedRenderer& renderer, World& picture, const std::string& name, const ParameterValues& values) {
    World result(picture.width(), picture.height());
    requireRendered(renderer, {.input = &picture, .output = &result, .values = values, .verifyInput = false}, name);
    return result;
}

/// The values of the sliders that no direction of the grid shows.
ParameterValues fixedValues(const std::vector<Slider>& sliders, const ContactSheet& sheet) {
    ParameterValues values;
    for (std::size_t i = 2; i < sliders.size(); ++i) {
        const auto list = sheet.lists.find(sliders[i].index);
        if (list == sheet.lists.end())
            continue;
        if (list->second.size() > 1)
            throw UsageError("--" + sliders[i].word() + ": a contact sheet shows several values of --" +
                             sliders[0].word() + " and --" + sliders[1].word() + " alone");
        values.emplace(list->first, list->second.front());
    }
    return values;
}

/// The grid of all pairs of values, each picture above its label. `name` is the file that the picture came from.
World grid(CheckedRenderer& renderer, World& picture, const std::string& name, ParameterValues values,
           const Axis& across, const Axis& down) {
    const int labelWidth = std::max(picture.width(), 2 * kLongestSideOfCell / 3);
    const int columnWidth = labelWidth + kGap;
    const int rowHeight = picture.height() + kLabelHeight + kGap;
    World whole(kGap + columnWidth * static_cast<int>(across.values.size()),
                kGap + rowHeight * static_cast<int>(down.values.size()));
    whole.fill(kBackground);
    int top = kGap;
    for (const double downValue : down.values) {
        int left = kGap;
        for (const double acrossValue : across.values) {
            across.set(values, acrossValue);
            down.set(values, downValue);
            layOver(whole, corrected(renderer, picture, name, values), left + (labelWidth - picture.width()) / 2, top);
            putLabel(whole, across.label(acrossValue) + "   " + down.label(downValue), left, top + picture.height(),
                     labelWidth);
            left += columnWidth;
        }
        top += rowHeight;
    }
    return whole;
}

} // namespace

std::vector<std::string> writeContactSheet(Effect& effect, const std::vector<Slider>& sliders,
                                           const ContactSheet& sheet) {
    const Axis across(sliders, 0, sheet.lists);
    const Axis down(sliders, 1, sheet.lists);
    if (across.values.size() * down.values.size() > kMostCells)
        throw Failure(sheet.output.string() + ": would have more than " + std::to_string(kMostCells) + " pictures");
    ParameterValues values = fixedValues(sliders, sheet);
    PictureReader reader(sheet.input, sheet.longestSide, sheet.convertsColours);
    PictureWriter writer(sheet.output, sheet.compression, sheet.rules);
    World picture(reader.width(), reader.height());
    reader.read(picture);
    World small = reduced(picture);
    CheckedRenderer renderer(effect);
    const World whole = grid(renderer, small, sheet.input.string(), std::move(values), across, down);
    std::vector<std::string> losses = reader.origin().losses;
    std::ranges::move(writer.write(whole, originOfSheet(whole)), std::back_inserter(losses));
    return losses;
}

} // namespace Ombrique::Hosts
