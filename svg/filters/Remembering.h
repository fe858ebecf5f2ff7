// SPDX-License-Identifier: MIT
// Functions of texels whose neighbours are often alike.
#pragma once

#include "svg/filters/FilterImage.h"

namespace KAVO {
namespace Svg {

// Calls a function again only for another key than the one before.
template <class Key, class Function>
class Remembering {
public:
    explicit Remembering(Function function) : function_(function), result_(function_(last_)) {}

    const Texel& operator()(const Key& key)
    {
        if (key != last_) {
            last_ = key;
            result_ = function_(key);
        }
        return result_;
    }

private:
    Function function_;
    Key last_ = {};
    Texel result_;
};

template <class Key, class Function>
Remembering<Key, Function> remembering(Function function)
{
    return Remembering<Key, Function>(function);
}

} // namespace Svg
} // namespace KAVO
