#include "Hosts/Engine/Slider.h"

#include <iomanip>
#include <iostream>

// Writes what a bundle declares of its sliders as a module of Lua, for the player's script: describe-sliders BUNDLE
int main(int, char** words) {
    std::cout << "return {\n";
    for (const auto& slider : Ombrique::Hosts::declaredSliders(Ombrique::Hosts::PluginBundle(words[1])))
        std::cout << "    {name = " << std::quoted(slider.name) << ", word = " << std::quoted(slider.word())
                  << ", range = " << std::quoted(slider.describeRange()) << ", minimum = " << slider.minimum
                  << ", maximum = " << slider.maximum << ", default = " << slider.defaultValue
                  << ", precision = " << slider.precision << "},\n";
    std::cout << "}\n";
}
