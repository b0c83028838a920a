/**
 * \file
 * What a companion effect sends: one CompanionSlot record per bone.
 *
 * A companion stands for one bone of a rig. It hands this record to the renderer on the same layer
 * as the extra argument of the host's general command (PF_Cmd_COMPLETELY_GENERAL, sent with
 * AEGP_EffectCallGeneric): when its pieces change, and when the renderer asks for it, by counting
 * up the companion's parameter TARVO_NUDGE_PARAMETER.
 *
 *     PieceQuad pieces[2] = { ... };
 *     CompanionSlot slot;
 *     memset(&slot, 0, sizeof slot);
 *     slot.quads.first = pieces;
 *     slot.quads.last = pieces + 2;
 *     slot.quads.reservedEnd = pieces + 2;
 *     slot.effectIndex = 3;                        our own 0-based place in the effect stack, as
 *                                                  in AEGP_GetLayerEffectByIndex(plugin_id, layer,
 *                                                  3, &effect), which gives this very effect
 *     slot.opacityA = 1.0;                         in each record: the next upload takes it
 *     if (we have an image that the renderer was not given yet) {
 *       new_world(effect_ref, width, height, flags, &world);
 *       ... draw in it ...
 *       memcpy(slot.imageA, &world, sizeof slot.imageA);
 *       slot.newImageA = 1;
 *     }
 *     err = AEGP_EffectCallGeneric(plugin_id, renderer, &time, PF_Cmd_COMPLETELY_GENERAL, &slot);
 *     if (slot.newImageA) {                        not taken: the world is still ours
 *       dispose_world(effect_ref, &world);
 *     }
 *     if (slot.newImageA || err) {
 *       ... the image goes with the next record, in a new world ...
 *     }
 *
 * The command's result is 0 or an error of the host's. PF_Err_BAD_CALLBACK_PARAM (516) also says
 * that the record was refused: an effectIndex below 0 or above 65,535, addresses of pieces that
 * make no sense, or another command in progress on this renderer instance. Nothing of a refused
 * record is taken: send it again later. The flag says whose a world is, whatever the result:
 * cleared, it is never the sender's to dispose of. It does not say that the image arrived: when the
 * host failed, as the result then tells, the renderer may have no image, so make another one and
 * send it.
 *
 * Each record replaces the pieces of the one before. Images stay until new ones come, but they
 * belong to a place in the stack, in one renderer: send yours again when your place has changed
 * (effects were moved, added or deleted above), and to a renderer that has none: all have lost
 * theirs after a project was opened or the effect was duplicated, and one that the user has just
 * applied never had any. The simplest companion sends its images whenever it is nudged. Bones are
 * numbered by the place of their companions in the stack; those switched off are left out.
 *
 * Send one message at a time, from any thread: the renderer has no lock, because a lock could
 * deadlock with a host that waits for another thread. A message sent from within a host call of the
 * renderer is accepted, unless that same instance is rendering or receiving a message.
 *
 * Both plug-ins are in one process on a little-endian machine with 64-bit addresses. The layout is
 * a fixed byte format: packed, 296 bytes a record, 156 bytes a piece. The header is plain C (C11)
 * or C++ and needs nothing but the C library. examples/companion/ holds a companion that uses it.
 */
#ifndef TARVO_COMPANION_H
#define TARVO_COMPANION_H

/* NOLINTBEGIN(modernize-*): what follows is C. */

#include <stddef.h>
#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#define TARVO_LAYOUT(condition) static_assert(condition, #condition)
#else
#define TARVO_LAYOUT(condition) _Static_assert(condition, #condition)
#endif

/** The match names of the two effects. */
#define TARVO_COMPANION_MATCH_NAME "QEZ_Tarvo"
#define TARVO_RENDERER_MATCH_NAME "QEZ_Tarvo_renderer"

/** The index of the companion's parameter that the renderer counts up, modulo 1000. */
#define TARVO_NUDGE_PARAMETER 89

/** The longest side, in pixels, of a layer and of an image that the host makes. */
#define TARVO_LONGEST_SIDE 30000

/** Bytes of the host's image record, PF_EffectWorld. */
#define TARVO_WORLD_BYTES 120

/** Values of PieceQuad.imageSelect. */
#define TARVO_IMAGE_A 0u
#define TARVO_IMAGE_B 0xFFFFFFFFu

#pragma pack(push, 1)

/** One piece: a textured quadrilateral, corners in the order 0, 1, 2, 3 around it. */
typedef struct PieceQuad {
  double corners[4][2];   /**< (x, y) in pixels of the layer at full resolution */
  double texCoords[4][2]; /**< (u, v) in pixels of the chosen image */
  double boneT;           /**< place along the bone: 0 at its start, 1 at its end */
  double opacity;         /**< not read by the receiver */
  uint32_t imageSelect;   /**< TARVO_IMAGE_A or TARVO_IMAGE_B */
  uint8_t reserved[8];    /**< not read by the receiver */
} PieceQuad;

/** Where the pieces lie in the sender's memory, back to back. The sender keeps owning them. */
typedef struct PieceQuadList {
  const PieceQuad* first;
  const PieceQuad* last;        /**< one past the last piece */
  const PieceQuad* reservedEnd; /**< one past the storage kept for pieces */
  uint8_t unused[8];
} PieceQuadList;

/** The record of one companion. The receiver writes nothing in it but the two newImage flags. */
typedef struct CompanionSlot {
  PieceQuadList quads;
  uint8_t imageA[TARVO_WORLD_BYTES]; /**< a PF_EffectWorld, 8 bits a channel */
  uint8_t imageB[TARVO_WORLD_BYTES];
  uint8_t newImageA; /**< nonzero: imageA is new and passes to the receiver, who clears the flag; */
  uint8_t newImageB; /**< a flag still set afterwards says that the world is yours */
  uint8_t padding[2];
  double opacityA; /**< 0 to 1, for pieces drawn from image A; counts from the next new image on */
  double opacityB; /**< the same for image B */
  int32_t effectIndex; /**< the sender's own 0-based place in the layer's effect stack */
} CompanionSlot;

#pragma pack(pop)

TARVO_LAYOUT(sizeof(PieceQuad) == 156);
TARVO_LAYOUT(offsetof(PieceQuad, corners) == 0);
TARVO_LAYOUT(offsetof(PieceQuad, texCoords) == 64);
TARVO_LAYOUT(offsetof(PieceQuad, boneT) == 128);
TARVO_LAYOUT(offsetof(PieceQuad, opacity) == 136);
TARVO_LAYOUT(offsetof(PieceQuad, imageSelect) == 144);
TARVO_LAYOUT(offsetof(PieceQuad, reserved) == 148);
TARVO_LAYOUT(sizeof(PieceQuadList) == 32);
TARVO_LAYOUT(offsetof(PieceQuadList, first) == 0);
TARVO_LAYOUT(offsetof(PieceQuadList, last) == 8);
TARVO_LAYOUT(offsetof(PieceQuadList, reservedEnd) == 16);
TARVO_LAYOUT(offsetof(PieceQuadList, unused) == 24);
TARVO_LAYOUT(sizeof(CompanionSlot) == 296);
TARVO_LAYOUT(offsetof(CompanionSlot, quads) == 0);
TARVO_LAYOUT(offsetof(CompanionSlot, imageA) == 32);
TARVO_LAYOUT(offsetof(CompanionSlot, imageB) == 152);
TARVO_LAYOUT(offsetof(CompanionSlot, newImageA) == 272);
TARVO_LAYOUT(offsetof(CompanionSlot, newImageB) == 273);
TARVO_LAYOUT(offsetof(CompanionSlot, padding) == 274);
TARVO_LAYOUT(offsetof(CompanionSlot, opacityA) == 276);
TARVO_LAYOUT(offsetof(CompanionSlot, opacityB) == 284);
TARVO_LAYOUT(offsetof(CompanionSlot, effectIndex) == 292);

#undef TARVO_LAYOUT

#ifdef __cplusplus
}
#endif

/* NOLINTEND(modernize-*) */

#endif /* TARVO_COMPANION_H */
