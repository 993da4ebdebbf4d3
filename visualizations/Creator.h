// Who made the plug-ins of this folder.
#pragma once

inline constexpr char kCreator[] = "Corvane";
