// SPDX-License-Identifier: MIT
// Which level of the processor the code is compiled for. Internal.
//
// The loops over pixels are compiled once for the instructions that the whole library is compiled
// for, and again for others that the processor at hand may have (CMakeLists.txt). All of them, and
// the headers that they alone are made of, lie in an inline namespace of the level's name, so that
// no function of one level is ever taken for another's. They are reached through LevelTable.h;
// code outside of them that includes such a header gets the functions of the level "base".
#pragma once

#if !defined(MM2D_LEVEL)
#define MM2D_LEVEL base
#endif

// The level whose fillers the table of this one has. Where loops over many pixels are all that a
// level's instructions make faster, these loops alone are compiled for it.
#if !defined(MM2D_FILLER_LEVEL)
#define MM2D_FILLER_LEVEL MM2D_LEVEL
#endif

// The level whose loops stand in where wider vectors would be no faster.
#if !defined(MM2D_NARROW_LEVEL)
#define MM2D_NARROW_LEVEL MM2D_LEVEL
#endif
