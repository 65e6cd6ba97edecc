/* QNVDRV10: the band rasteriser of a color printer driver.
 *
 * A driver (the host) cuts a page into horizontal bands, owns the memory of the band it works on, and
 * forwards drawing calls here; each call paints into that memory and returns. This header is the whole
 * interface: plain C, nothing but <stdint.h>.
 *
 * Conventions
 *   - Every function is cdecl. Where pointers have four bytes every argument is one 32-bit slot and every
 *     record below has exactly the offsets given; elsewhere pointer fields are native pointers.
 *   - Records are packed and little-endian, owned by the host, and only read during the call, unless the
 *     text says that a call writes them. After a call the library keeps no pointer of the host's except the
 *     addresses of the band buffers.
 *   - Rectangles are half-open: a point is inside when left <= x < right and top <= y < bottom.
 *   - "16-bit result": only the low 16 bits carry the result. On a bad handle such a call returns the
 *     handle's own value with its low 16 bits cleared; the other calls return a whole 0.
 *   - A bad handle is a null pointer, or one whose first two bytes are not 0x4E51.
 *   - One thread at a time for each handle. Handles share nothing.
 *   - The platform's names (BITMAPINFOHEADER, R2_COPYPEN ...) are declared here only where the platform's
 *     own header has not done so: a host that needs both includes <windows.h> first.
 */
#ifndef QNVDRV10_H
#define QNVDRV10_H

#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

#if defined(_MSC_VER)
#define QNV_CALL __cdecl
#else
#define QNV_CALL
#endif

/* ---- Device set-up ------------------------------------------------------------------------------- */

typedef struct DeviceHandle DeviceHandle; /* opaque; made by QNVEnable, ended by QNVDisable */

#define QNV_KIND_SCALED 0u /* draws at resolutionA, keeps a 24-bit band at resolutionB */
#define QNV_KIND_RASTER 1u /* plain band; dual-plane when QNVEnable gets a second buffer */
#define QNV_KIND_DUAL_PLANE 2u /* accepted by QNVGetDeviceInfo only */

#pragma pack(push, 1)

/* What kind of device to make and how large it is. 16 bytes, read by QNVEnable, which copies it, and by
 * QNVGetDeviceInfo. */
typedef struct DeviceDescription {
  uint16_t kind;         /*  0  QNV_KIND_... */
  uint16_t bitsPerPixel; /*  2  24 (blue, green, red bytes) or 8 (one gray byte); on kind 0 a value of 0
                                selects gray mode over three bytes a pixel */
  uint16_t resolutionA;  /*  4  dots per inch of the page: sizes are divided by it; must not be 0 */
  uint32_t width;        /*  6  pixels of a band row, from which the bytes of a row follow */
  uint32_t height;       /* 10  rows of the band buffer; the clear escape sets that many */
  uint16_t resolutionB;  /* 14  dots per inch of the device: sizes are multiplied by it */
} DeviceDescription;

/* A rectangle in pixels of the page: the place of the band, a clip, or the opaque rectangle of text. 16 bytes.
 * Byte 0 of the band's buffer is the pixel (left, top) of the band's rectangle. */
typedef struct BandRect {
  int32_t left;   /*  0 */
  int32_t top;    /*  4 */
  int32_t right;  /*  8  exclusive */
  int32_t bottom; /* 12  exclusive */
} BandRect;

/* The size of a device. 8 bytes, written by QNVGetDeviceInfo. */
typedef struct DeviceSize {
  uint32_t width;  /* 0  description width scaled from resolution A to B, pixels */
  uint32_t height; /* 4 */
} DeviceSize;

/* Where the host's coordinates begin, in pixels of the page. 8 bytes, the data of escape QNV_SET_ORIGIN. */
typedef struct DrawingOrigin {
  int32_t x; /* 0  added to every x a drawing call receives, clip rectangles included */
  int32_t y; /* 4 */
} DrawingOrigin;

/* Escapes of QNVControl, compared on the low 16 bits. */
#define QNV_SET_ORIGIN 0x2000u    /* data: DrawingOrigin */
#define QNV_SET_BAND_RECT 0x2001u /* data: BandRect; moves the band on the page, its memory stays the same */
#define QNV_CLEAR_BAND 0x2002u    /* data unused; sets the whole buffer to white and the tag plane to 1 */

/* Values of the tag plane of a dual-plane device. */
#define QNV_TAG_GRAPHICS 1u
#define QNV_TAG_IMAGE 3u

/* ---- Drawing records ------------------------------------------------------------------------------ */

/* How a call combines what it paints with the band: 42 bytes, the platform's draw mode for drivers. Colors are
 * physical colors (see QNVColorInfo). The library writes a single field: a QNVDevExtTextOut that measures sets
 * BreakErr. */
typedef struct DRAWMODE {
  int16_t Rop2;           /*  0  R2_... 1..16 */
  int16_t bkMode;         /*  2  1 transparent, 2 opaque */
  uint32_t bkColor;       /*  4  0x00BBGGRR */
  uint32_t TextColor;     /*  8  0x00BBGGRR */
  int16_t TBreakExtra;    /* 12  pixels to spread over the break characters of a line */
  int16_t BreakExtra;     /* 14  not read */
  int16_t BreakErr;       /* 16  remainder of the spreading, carried from one call of a line to the next */
  int16_t BreakRem;       /* 18  not read */
  int16_t BreakCount;     /* 20  break characters in the line */
  int16_t CharacterExtra; /* 22  pixels added after every character */
  uint32_t LbkColor;      /* 24  not read */
  uint32_t LTextColor;    /* 28  not read */
  uint8_t reserved[10];   /* 32  not read */
} DRAWMODE;

/* A source of QNVDevBitBlt, or the bitmap of a pattern brush: 14 bytes, the platform's BITMAP. The top row comes
 * first. With one plane of one bit a pixel, the most significant bit is the leftmost pixel, and 1 stands for
 * bkColor, 0 for TextColor. All other bitmaps hold 3 bytes a pixel (red, green, blue) for 24-bit bands and one
 * gray byte a pixel for 8-bit bands. */
typedef struct SourceBitmap {
  int16_t bmType;        /*  0  not read */
  int16_t bmWidth;       /*  2  pixels; nothing to the right of them is read */
  int16_t bmHeight;      /*  4  rows; nothing below them is read */
  uint16_t bmWidthBytes; /*  6  bytes from one row to the next */
  uint8_t bmPlanes;      /*  8 */
  uint8_t bmBitsPixel;   /*  9 */
  const void *bmBits;    /* 10  row 0 */
} SourceBitmap;

/* 10 bytes: a pen before it is realised. */
typedef struct LogicalPen {
  uint16_t style;  /* 0  PS_... */
  int16_t widthX;  /* 2 */
  int16_t widthY;  /* 4 */
  uint32_t colour; /* 6  0x00BBGGRR */
} LogicalPen;

/* 10 bytes: a realised pen. */
typedef struct PhysicalPen {
  uint16_t style;  /* 0  PS_SOLID or PS_NULL; every other style is realised as PS_SOLID */
  int16_t widthX;  /* 2  copied */
  int16_t widthY;  /* 4  copied */
  uint32_t colour; /* 6  physical color */
} PhysicalPen;

/* 12 bytes where pointers have four: a brush before it is realised. */
typedef struct LogicalBrush {
  uint16_t style;      /* 0  BS_SOLID, BS_HOLLOW, BS_HATCHED, BS_PATTERN */
  uintptr_t colour;    /* 2  0x00BBGGRR; for BS_PATTERN the address of a SourceBitmap instead */
  int16_t hatch;       /* +0 (6)  HS_... */
  uint32_t background; /* +2 (8)  physical color of the gaps of a hatch, not converted */
} LogicalBrush;

/* 268 bytes: a realised brush. A cell with top byte 0xFF is foreground, one with top byte 0 background. */
typedef struct PhysicalBrush {
  uint16_t style;        /*  0  as the logical brush */
  uint16_t hatch;        /*  2  as the logical brush */
  uint16_t patternDepth; /*  4  24, 8 or 1 for pattern brushes, else 0 */
  uint8_t hatchScale[2]; /*  6  pixels that a cell covers, horizontally and vertically; above 2 counts as 2 */
  uint32_t colour;       /*  8  physical color; 0 for a 1-bit pattern */
  uint32_t cells[64];    /* 12  8 rows of 8, top row first, leftmost first */
} PhysicalBrush;

/* What is read of a raster font: the first 33 bytes of the platform's font record. The character table follows at
 * byte 49 (entries of 4 bytes: u16 width, u16 offset) when dfType is exactly 0x200, else at byte 82 (entries of 6
 * bytes: u16 width, u32 offset). A glyph lies at fontBase + offset: columns of 8 pixels, dfPixHeight bytes each, top
 * row first, bit 0x80 leftmost. */
typedef struct FONTINFO {
  uint16_t dfType;           /*  0  bit 0x20: two-byte characters; 0x200: short table */
  int16_t dfPoints;          /*  2  not read */
  int16_t dfVertRes;         /*  4  not read */
  int16_t dfHorizRes;        /*  6  not read */
  int16_t dfAscent;          /*  8  not read */
  int16_t dfInternalLeading; /* 10  not read */
  int16_t dfExternalLeading; /* 12  not read */
  uint8_t dfItalic;          /* 14  not read */
  uint8_t dfUnderline;       /* 15  not read */
  uint8_t dfStrikeOut;       /* 16  not read */
  int16_t dfWeight;          /* 17  not read */
  uint8_t dfCharSet;         /* 19  not read */
  int16_t dfPixWidth;        /* 20  advance of every character of a fixed-pitch font */
  int16_t dfPixHeight;       /* 22  rows of every glyph; none when negative */
  uint8_t dfPitchAndFamily;  /* 24  bit 0x01: widths come from the character table */
  int16_t dfAvgWidth;        /* 25  not read */
  int16_t dfMaxWidth;        /* 27  not read */
  uint8_t dfFirstChar;       /* 29  first code of the table (one-byte fonts) */
  uint8_t dfLastChar;        /* 30 */
  uint8_t dfDefaultChar;     /* 31  relative to dfFirstChar; shown for codes outside the table */
  uint8_t dfBreakChar;       /* 32  relative to dfFirstChar; justification widens this character */
} FONTINFO;

#ifndef _WINGDI_
/* The description of a device-independent bitmap: 40 bytes. Followed at byte biSize by the color table (blue, green,
 * red, unused; 1, 4 and 8 bits), or at byte 40 by three masks (red, green, blue; 16 bits with BI_BITFIELDS).
 *
 * Run-length data (BI_RLE8, BI_RLE4) has no length here: the host puts 260 + 2 * |biHeight| zero bytes behind the bytes
 * of the document. Nothing farther is read, whatever the data holds; a last code of 0 1 alone is no such promise. */
typedef struct BITMAPINFOHEADER {
  uint32_t biSize;  /* 40..4096 at 1, 4 and 8 bits, else refused; not read at the others */
  int32_t biWidth;  /* 1..32767, else refused */
  int32_t biHeight; /* -32767..32767 but 0; negative: top row stored first */
  uint16_t biPlanes;
  uint16_t biBitCount; /* 1, 4, 8, 16, 24, 32 */
  uint32_t biCompression;  /* 4, 5 and values above 6 are refused; 6 is taken as plain rows */
  uint32_t biSizeImage;    /* not read */
  int32_t biXPelsPerMeter; /* not read */
  int32_t biYPelsPerMeter; /* not read */
  uint32_t biClrUsed;      /* 0: the full table; missing entries of a short table are white */
  uint32_t biClrImportant; /* not read */
} BITMAPINFOHEADER;
#endif

#pragma pack(pop)

/* ---- The platform's codes -------------------------------------------------------------------------- */

#ifndef _WINGDI_
#define OBJ_PEN 1 /* kinds of QNVRealizeObject */
#define OBJ_BRUSH 2

#define PS_SOLID 0
#define PS_DASH 1
#define PS_DOT 2
#define PS_DASHDOT 3
#define PS_DASHDOTDOT 4
#define PS_NULL 5
#define PS_INSIDEFRAME 6

#define BS_SOLID 0
#define BS_HOLLOW 1
#define BS_HATCHED 2
#define BS_PATTERN 3

#define HS_HORIZONTAL 0
#define HS_VERTICAL 1
#define HS_FDIAGONAL 2
#define HS_BDIAGONAL 3
#define HS_CROSS 4
#define HS_DIAGCROSS 5

#define TRANSPARENT 1
#define OPAQUE 2

#define ETO_OPAQUE 2
#define ETO_CLIPPED 4

#define R2_BLACK 1
#define R2_NOTMERGEPEN 2
#define R2_MASKNOTPEN 3
#define R2_NOTCOPYPEN 4
#define R2_MASKPENNOT 5
#define R2_NOT 6
#define R2_XORPEN 7
#define R2_NOTMASKPEN 8
#define R2_MASKPEN 9
#define R2_NOTXORPEN 10
#define R2_NOP 11
#define R2_MERGENOTPEN 12
#define R2_COPYPEN 13
#define R2_MERGEPENNOT 14
#define R2_MERGEPEN 15
#define R2_WHITE 16

#define SRCCOPY 0x00CC0020u
#define SRCPAINT 0x00EE0086u
#define SRCAND 0x008800C6u
#define SRCINVERT 0x00660046u
#define SRCERASE 0x00440328u
#define NOTSRCCOPY 0x00330008u
#define NOTSRCERASE 0x001100A6u
#define MERGECOPY 0x00C000CAu
#define MERGEPAINT 0x00BB0226u
#define PATCOPY 0x00F00021u
#define PATPAINT 0x00FB0A09u
#define PATINVERT 0x005A0049u
#define DSTINVERT 0x00550009u
#define BLACKNESS 0x00000042u
#define WHITENESS 0x00FF0062u

#define BI_RGB 0u
#define BI_RLE8 1u
#define BI_RLE4 2u
#define BI_BITFIELDS 3u
#endif

/* Extended raster code of QNVStretchDIBits: each byte becomes the smaller of band and image. */
#define ROP_MINIMUM 0x01000000u

/* Span encodings of QNVOutput. */
#define OS_SCANLINES 4u         /* 104 means the same */
#define OS_BANDED_SPANS 5u      /* 105 means the same */
#define OS_ROW_RECORDS 205u
#define OS_ROW_SPANS 305u
#define OS_BYTE_DELTAS 405u
#define OS_NIBBLE_DELTAS 505u
#define OS_BEGINNSCAN 80u
#define OS_ENDNSCAN 81u

/* ---- Functions -------------------------------------------------------------------------------------- */

/* Makes a device that paints into one band and returns its handle. Returns null for an unknown kind or depth, a null
 * description or bandRect, a resolution A of 0 on kind 0, and when there is no memory.
 *   buffer        the band: rows of (width * bytes a pixel + 3) & ~3 bytes, top row first. It belongs to the host and
 *                 must live until QNVDisable. With a null buffer nothing is painted.
 *   secondBuffer  with kind 1, unless null, the tag plane of a dual-plane device: one byte a pixel, rows of
 *                 (width + 3) & ~3 bytes. bitsPerPixel does not matter for the choice of this device; its clear
 *                 escape writes three bytes a pixel into `buffer`, even when another depth is described. */
DeviceHandle *QNV_CALL QNVEnable(const DeviceDescription *description, const BandRect *bandRect, void *buffer,
                                 void *secondBuffer);

/* Destroys the device and frees the handle; the host's buffers are left alone. */
void QNV_CALL QNVDisable(DeviceHandle *handle);

/* Tells the size of a device before it is made: writes the described size, scaled from resolution A to B, and returns
 * 8. Returns 0 for a null result, an unknown kind or depth. */
uint32_t QNV_CALL QNVGetDeviceInfo(const DeviceDescription *description, DeviceSize *result);

/* Escapes: set the drawing origin, move the band, clear it. 16-bit result: 1 when done, 0 for an unknown code or null
 * data where data is needed. */
uint32_t QNV_CALL QNVControl(DeviceHandle *handle, uint32_t code, const void *data, void *extra);

/* Logical color 0x00BBGGRR to physical color: itself on color devices, the gray level
 * (30 red + 59 green + 11 blue) / 100 in three bytes on gray ones. Also stored at `result` unless null. */
uint32_t QNV_CALL QNVColorInfo(DeviceHandle *handle, uint32_t colour, uint32_t *result);

/* Realises a pen (LogicalPen to PhysicalPen) or a brush (LogicalBrush to PhysicalBrush); `kind` counts on its
 * low 16 bits, `extra` is not read. Null `output`: the record's size, 10 or 268. Else 0x8002 for a solid
 * brush, 0x8000 for the others, 0 for an unknown kind, a brush style above 3, or null input. */
uint32_t QNV_CALL QNVRealizeObject(DeviceHandle *handle, uint32_t kind, const void *input, void *output,
                                   const void *extra);

/* One pixel at page coordinates. Null drawMode reads: the pixel with its first band byte in bits 0..7, 0 when
 * clipped away. Else writes `colour` (bits 16..23 into the first byte) under Rop2, the only field of the draw
 * mode that is read, and returns 0. `clip` is required. */
uint32_t QNV_CALL QNVPixel(DeviceHandle *handle, int32_t x, int32_t y, uint32_t colour, const DRAWMODE *drawMode,
                           const BandRect *clip);

/* QNVPixel on every pixel of the rectangle that has these two corners; both corners belong to it. Returns 0. */
uint32_t QNV_CALL QNVPolyPixel(DeviceHandle *handle, int32_t x1, int32_t y1, int32_t x2, int32_t y2, uint32_t colour,
                               const DRAWMODE *drawMode, const BandRect *clip);

/* Ternary raster operation; bits 16..23 of `rop` are its index. `source` is read only when the index uses the
 * source, `brush` only when it uses the pattern; a null drawMode keeps the pattern of the call before. `clip`
 * is required; all four values 0 after the origin is added means no clip. 16-bit result, 1 on a plain
 * device whatever was painted; 0 when a dual-plane device cannot tag the transfer. */
uint32_t QNV_CALL QNVDevBitBlt(DeviceHandle *handle, int32_t destX, int32_t destY, const SourceBitmap *source,
                               int32_t srcX, int32_t srcY, int32_t width, int32_t height, uint32_t rop,
                               const PhysicalBrush *brush, const DRAWMODE *drawMode, const BandRect *clip);

/* Paints a list of spans (OS_...) with the brush or, without one, the pen, under drawMode->Rop2; a null drawMode
 * keeps the pattern of the call before. `style` and `count` count on their low 16 bits. 16-bit result: 1
 * understood (even if all was clipped), 0xFFFF unknown style (0 on a dual-plane device whose tag plane holds
 * images), 0 for a null clip.
 *
 *   OS_SCANLINES      count word pairs: (unused, y), then (left, right) ...
 *   OS_BANDED_SPANS   count records: n, top, bottom, n words (left, right) ..., n again
 *   OS_ROW_RECORDS    y, then count rows: n, n words (left, right) ...; an odd n reads one word more
 *   OS_ROW_SPANS      y, then count rows: left, right
 *   OS_BYTE_DELTAS    y, left, right, then a byte pair (dLeft, dRight) for each further row
 *   OS_NIBBLE_DELTAS  the same with one byte a row: low nibble dLeft, high nibble dRight, -8..7
 *
 * A negative n that leads before the list ends it.
 */
uint32_t QNV_CALL QNVOutput(DeviceHandle *handle, uint32_t style, uint32_t count, const int16_t *points,
                            const PhysicalPen *pen, const PhysicalBrush *brush, const DRAWMODE *drawMode,
                            const BandRect *clip);

/* Raster-font text; (x, y) is the top left of the first cell. `count` is taken as signed 16 bits: negative
 * measures |count| characters and draws no glyph. `charWidths`, when given, places the characters; `clip`
 * and `opaqueRect` may be null. Codes of two-byte fonts index the character table unchecked: the host maps a
 * document's codes to entries that the table has, or gives all 65,536 (393,216 bytes from byte 82 on). Returns the advance, or (dfPixHeight << 16) | (advance & 0xFFFF) when
 * measuring, which also writes drawMode->BreakErr. */
int32_t QNV_CALL QNVDevExtTextOut(DeviceHandle *handle, int32_t x, int32_t y, const BandRect *clip,
                                  const void *string, int32_t count, const void *fontBase, uint32_t fontOffset,
                                  DRAWMODE *drawMode, const void *textXForm, const int16_t *charWidths,
                                  const BandRect *opaqueRect, uint32_t options);

/* Paints a rectangle of a device-independent bitmap, stretched to the destination's size, and mirrored where the signs
 * of the extents differ.
 *   get         low 16 bits: 1 asks to read the band back, which is refused; any other value paints
 *   bitmapInfo  a BITMAPINFOHEADER followed by its table or masks
 *   rop         SRCCOPY, any ternary code, or ROP_MINIMUM
 * 16-bit result: 1 when painted, 0 when refused (get = 1, a null pointer, a bad header) or clipped away wholly. */
uint32_t QNV_CALL QNVStretchDIBits(DeviceHandle *handle, uint32_t get, int32_t dstX, int32_t dstY, int32_t dstWidth,
                                   int32_t dstHeight, int32_t srcX, int32_t srcY, int32_t srcWidth,
                                   int32_t srcHeight, const void *bits, const void *bitmapInfo,
                                   const void *conversionInfo, uint32_t rop, const PhysicalBrush *brush,
                                   const DRAWMODE *drawMode, const BandRect *clip);

/* QNVStretchDIBits, unscaled and with SRCCOPY, of numScans stored rows from row startScan on. */
uint32_t QNV_CALL QNVDevSetDIBitsToDevice(DeviceHandle *handle, int32_t x, int32_t y, uint32_t startScan,
                                          uint32_t numScans, const BandRect *clip, const DRAWMODE *drawMode,
                                          const void *bits, const void *bitmapInfo, const void *conversionInfo);

#ifdef __cplusplus
}
#endif

#endif
