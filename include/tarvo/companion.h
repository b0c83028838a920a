/*
 * What a companion effect sends: one CompanionSlot record per bone.
 *
 * A companion (match name "QEZ_Tarvo") stands for one bone of a rig. Whenever its pieces change it
 * hands this record, as the extra argument of the host's general command
 * (PF_Cmd_COMPLETELY_GENERAL), to the renderer (match name "QEZ_Tarvo_renderer") on the same layer:
 *
 *     PieceQuad pieces[2] = { ... };
 *     CompanionSlot slot;
 *     memset(&slot, 0, sizeof slot);
 *     slot.quads.first = pieces;
 *     slot.quads.last = pieces + 2;
 *     slot.quads.reservedEnd = pieces + 2;
 *     memcpy(slot.imageA, &world, sizeof slot.imageA);   a PF_EffectWorld from the host's new_world
 *     slot.newImageA = 1;
 *     slot.opacityA = 1.0;
 *     slot.effectIndex = 3;                              our own 0-based place in the effect stack
 *     ... send ...
 *     if (slot.newImageA) dispose_world(&world);         not taken: the world is still ours
 *
 * Both plug-ins live in one process on a little-endian machine with 64-bit addresses. The layout is
 * a fixed byte format: packed, 296 bytes a record, 156 bytes a piece. The header is plain C and
 * needs nothing but the C library.
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

/* Bytes of the host's image record, PF_EffectWorld. */
#define TARVO_WORLD_BYTES 120

/* Values of PieceQuad.imageSelect. */
#define TARVO_IMAGE_A 0u
#define TARVO_IMAGE_B 0xFFFFFFFFu

#pragma pack(push, 1)

/* One piece: a textured quadrilateral, corners in the order 0, 1, 2, 3 around it. */
typedef struct PieceQuad {
  double corners[4][2];   /* (x, y) in pixels of the layer at full resolution */
  double texCoords[4][2]; /* (u, v) in pixels of the chosen image */
  double boneT;           /* place along the bone: 0 at its start, 1 at its end */
  double opacity;         /* not read by the receiver */
  uint32_t imageSelect;   /* TARVO_IMAGE_A or TARVO_IMAGE_B */
  uint8_t reserved[8];    /* not read by the receiver */
} PieceQuad;

/* Where the pieces lie in the sender's memory, back to back. The sender keeps owning them. */
typedef struct PieceQuadList {
  const PieceQuad* first;
  const PieceQuad* last;        /* one past the last piece */
  const PieceQuad* reservedEnd; /* one past the storage kept for pieces */
  uint8_t unused[8];
} PieceQuadList;

/* The record of one companion. The receiver writes nothing in it but the two newImage flags. */
typedef struct CompanionSlot {
  PieceQuadList quads;
  uint8_t imageA[TARVO_WORLD_BYTES]; /* a PF_EffectWorld, 8 bits a channel */
  uint8_t imageB[TARVO_WORLD_BYTES];
  uint8_t newImageA; /* nonzero: imageA is new and passes to the receiver, who clears the flag */
  uint8_t newImageB; /* and disposes of the world; a flag still set says the world is yours */
  uint8_t padding[2];
  double opacityA; /* 0 to 1, for pieces drawn from image A; counts from the next new image on */
  double opacityB; /* the same for image B */
  int32_t effectIndex; /* the sender's own 0-based place in the layer's effect stack */
} CompanionSlot;

#pragma pack(pop)

TARVO_LAYOUT(sizeof(PieceQuad) == 156);
TARVO_LAYOUT(offsetof(PieceQuad, texCoords) == 64);
TARVO_LAYOUT(offsetof(PieceQuad, boneT) == 128);
TARVO_LAYOUT(offsetof(PieceQuad, opacity) == 136);
TARVO_LAYOUT(offsetof(PieceQuad, imageSelect) == 144);
TARVO_LAYOUT(offsetof(PieceQuad, reserved) == 148);
TARVO_LAYOUT(sizeof(PieceQuadList) == 32);
TARVO_LAYOUT(sizeof(CompanionSlot) == 296);
TARVO_LAYOUT(offsetof(CompanionSlot, imageA) == 32);
TARVO_LAYOUT(offsetof(CompanionSlot, imageB) == 152);
TARVO_LAYOUT(offsetof(CompanionSlot, newImageA) == 272);
TARVO_LAYOUT(offsetof(CompanionSlot, newImageB) == 273);
TARVO_LAYOUT(offsetof(CompanionSlot, opacityA) == 276);
TARVO_LAYOUT(offsetof(CompanionSlot, opacityB) == 284);
TARVO_LAYOUT(offsetof(CompanionSlot, effectIndex) == 292);

#undef TARVO_LAYOUT

#ifdef __cplusplus
}
#endif

/* NOLINTEND(modernize-*) */

#endif /* TARVO_COMPANION_H */
