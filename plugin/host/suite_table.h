#pragma once

#include <cstddef>
#include <tuple>
#include <type_traits>

#include "sdk/aegp_suites.h"
#include "sdk/effect_suites.h"

namespace plugin {

/// A suite's record with the name and version under which the host registers it.
template <class SuiteRecord>
struct RegisteredSuite {
  using Record = SuiteRecord;
  const char* name;
  A_long version;
};

/// Every suite this plug-in uses.
inline constexpr std::tuple kSuiteTable{
    RegisteredSuite<AEGP_UtilitySuite3>{"AEGP Utility Suite", 7},
    RegisteredSuite<AEGP_UtilitySuite5>{"AEGP Utility Suite", 11},
    RegisteredSuite<AEGP_UtilitySuite6>{"AEGP Utility Suite", 13},
    RegisteredSuite<AEGP_RegisterSuite5>{"AEGP Register Suite", 6},
    RegisteredSuite<AEGP_PersistentDataSuite3>{"AEGP Persistent Data Suite", 3},
    RegisteredSuite<PF_HandleSuite1>{"PF Handle Suite", 2},
    RegisteredSuite<PF_ANSICallbacksSuite1>{"PF ANSI Suite", 1},
    RegisteredSuite<AEGP_PFInterfaceSuite1>{"AEGP PF Interface Suite", 1},
    RegisteredSuite<AEGP_EffectSuite2>{"AEGP Effect Suite", 2},
    RegisteredSuite<AEGP_EffectSuite3>{"AEGP Effect Suite", 3},
    RegisteredSuite<AEGP_StreamSuite4>{"AEGP Stream Suite", 9},
    RegisteredSuite<AEGP_StreamSuite1>{"AEGP Stream Suite", 4},
    RegisteredSuite<AEGP_DynamicStreamSuite4>{"AEGP Dynamic Stream Suite", 5},
    RegisteredSuite<PF_ParamUtilsSuite3>{"PF Param Utils Suite", 3},
    RegisteredSuite<AEGP_ProjSuite5>{"AEGP Proj Suite", 8},
    RegisteredSuite<AEGP_ItemSuite6>{"AEGP Item Suite", 10},
    RegisteredSuite<AEGP_CompSuite4>{"AEGP Comp Suite", 9},
    RegisteredSuite<AEGP_LayerSuite5>{"AEGP Layer Suite", 11},
    RegisteredSuite<PF_WorldSuite1>{"PF World Suite", 1},
    RegisteredSuite<PF_FillMatteSuite2>{"PF Fill Matte Suite", 2},
};

inline constexpr std::size_t kSuiteCount = std::tuple_size_v<decltype(kSuiteTable)>;

/// Place of a suite in the table. A record that is not in it does not compile.
template <class SuiteRecord, std::size_t Place = 0>
constexpr std::size_t SuitePlace() {
  static_assert(Place < kSuiteCount, "the suite is missing in kSuiteTable");
  using Entry = std::tuple_element_t<Place, std::remove_const_t<decltype(kSuiteTable)>>;
  if constexpr (std::is_same_v<typename Entry::Record, SuiteRecord>) {
    return Place;
  } else {
    return SuitePlace<SuiteRecord, Place + 1>();
  }
}

}  // namespace plugin
