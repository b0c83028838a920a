#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace standin {

/// \file
/// The operations of the host's interface by table and slot, those that this host does not have
/// among them: with the published name in a message it is plain which operation a plug-in that is
/// one slot off calls. Every function describes each pointer-sized word of a table, in order, such
/// as "slot 8 of AEGP Stream Suite 4, AEGP_GetStreamUnitsText,".

/// The slots of a suite; more than are known by name say so.
std::vector<std::string> DescribeSuiteSlots(std::string_view suite, std::int32_t version,
                                            std::size_t slots);
std::vector<std::string> DescribeBasicSuiteSlots();
std::vector<std::string> DescribeInteractionSlots();
/// With byte offsets: two tables lie inside this one, so its slots are not one word each.
std::vector<std::string> DescribeUtilitySlots();

}  // namespace standin
