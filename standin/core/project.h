#pragma once

#include <cstddef>
#include <list>
#include <memory>
#include <string>
#include <vector>

#include "sdk/aegp.h"
#include "sdk/effect.h"
#include "tarvo/companion.h"

namespace standin {

class Layer;

/// Match names of the two kinds of effect that belong together, as published for makers of
/// companions.
inline constexpr const char* kRendererMatchName = TARVO_RENDERER_MATCH_NAME;
inline constexpr const char* kCompanionMatchName = TARVO_COMPANION_MATCH_NAME;

/// A parameter of an effect: its definition and current value, and its stream's flags.
struct Parameter {
  /// A parameter of an effect that this host only pretends to run: one plain number.
  static Parameter Plain(const std::string& name, double value = 0);
  /// A parameter as a plug-in declared it.
  static Parameter Declared(const PF_ParamDef& definition);

  /// Value of a slider, checkbox or popup; 0 for any other type.
  [[nodiscard]] double Value() const;
  /// Sets it. Checkboxes and popups keep the whole number.
  void SetValue(double value);
  /// True iff a value lies in the parameter's valid range, or among a popup's choices.
  [[nodiscard]] bool Takes(double value) const;
  [[nodiscard]] std::string Name() const;
  void SetName(const std::string& name);  ///< cut to 31 characters
  [[nodiscard]] bool Hidden() const { return (streamFlags & AEGP_DynStreamFlag_HIDDEN) != 0; }
  [[nodiscard]] bool Supervised() const { return (definition.flags & PF_ParamFlag_SUPERVISE) != 0; }

  PF_ParamDef definition{};
  /// As passed to the last PF_UpdateParamUI; the host applies few of them.
  PF_ParamUIFlags sentUiFlags = 0;
  /// Beside the flag for hidden streams another is set, so that flags must be tested one by one.
  AEGP_DynStreamFlags streamFlags = AEGP_DynStreamFlag_ACTIVE_EYEBALL;
};

/// One entry of a layer's effect stack. Its group is the stream group that holds its parameters;
/// the group's name is what the user reads in the stack.
class Effect {
 public:
  Effect(Layer& layer, std::string effectMatchName);
  Effect(const Effect&) = delete;
  Effect& operator=(const Effect&) = delete;
  virtual ~Effect() = default;

  [[nodiscard]] Layer& OnLayer() const { return *layer_; }
  /// 0-based place in the stack, from the top.
  [[nodiscard]] int Position() const;

  std::string matchName;
  std::string groupName;
  bool active = true;
  /// The host has the effect but no reference to give: asked for one, it succeeds with null.
  bool withoutReference = false;
  /// False: asked for the effect's layer, the host succeeds with null.
  bool layerIsKnown = true;
  /// The host's name for an effect that makes calls of its own; null for the others.
  PF_ProgPtr programRef = nullptr;
  /// Index 0 is the input layer.
  std::vector<Parameter> parameters;

 private:
  Layer* layer_;
};

/// A layer: its size in pixels at full resolution, and its effects from the top.
class Layer {
 public:
  Layer(std::string layerName, int layerWidth, int layerHeight);

  /// 0-based place of an effect; -1 when it is not on this layer.
  [[nodiscard]] int PositionOf(const Effect& effect) const;
  /// Puts an effect into the stack; a position below 0 or past the end means the end.
  Effect& Insert(std::unique_ptr<Effect> effect, int position);
  /// Takes an effect out of the stack; null when it is not on this layer.
  std::unique_ptr<Effect> Take(const Effect& effect);

  std::string name;
  int width;
  int height;
  std::vector<std::unique_ptr<Effect>> effects;
  const void* handle = nullptr;  ///< the host's name for it, once asked for
};

/// A composition: layers from the top.
class Composition {
 public:
  explicit Composition(std::string compositionName);
  Layer& AddLayer(const std::string& layerName, int width, int height);

  std::string name;
  std::list<Layer> layers;
  const void* handle = nullptr;
  const void* itemHandle = nullptr;
};

/// The project and what is active in it.
class Project {
 public:
  /// A new composition, which becomes the active item.
  Composition& AddComposition(const std::string& name);

  /// Makes a composition, a footage item or nothing the active item.
  void Activate(Composition& composition);
  void ActivateFootage();
  void ActivateNothing();

  [[nodiscard]] Composition* ActiveComposition() const { return activeComposition_; }
  [[nodiscard]] bool FootageIsActive() const { return footageIsActive_; }

  /// A host can run without a project.
  bool open = true;
  std::list<Composition> compositions;
  const void* footageHandle = nullptr;

 private:
  Composition* activeComposition_ = nullptr;
  bool footageIsActive_ = false;
};

}  // namespace standin
