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
 *   - A bad handle is a null pointer, or one whose first two bytes are not 0x4E51. Handles that were not made
 *     by QNVEnable, or that QNVDisable has freed, must not be passed.
 *   - A handle may be used by one thread at a time. Handles share nothing.
 *   - Page pixels are the unit of the host's coordinates, band pixels those of the band's memory. On kind 0
 *     page pixels have resolution A and band pixels resolution B. On the other kinds they are the same.
 *   - Memory comes from the C heap. QNVEnable allocates it (kind 0: 4 bytes more for each dot of both resolutions)
 *     and QNVDisable frees all of it. Of the other calls only these allocate:
 *       span output           8 bytes a pair for a record of more than 128 pairs; without memory the record is
 *                             skipped
 *       the two image calls   what an image needs beyond the largest before it, in all at most 3 MB plus 32 bytes
 *                             for each column of the band; without memory they return 0 and paint nothing
 *       QNVGetDeviceInfo      1 KB while it runs; it also works without
 *     The device keeps what the span and image calls allocated until QNVDisable.
 *   - When a call faults in the host's own memory and the host catches the fault and leaves the call, no other handle
 *     is affected. The handle of that call may only be passed to QNVDisable, which frees everything it holds. What
 *     the call had painted lies inside the clip and the band.
 *   - The platform's names (BITMAPINFOHEADER, R2_COPYPEN ...) are declared here only where the platform's
 *     own header has not done so: a host that needs both includes <windows.h> first.
 */
#if defined(QNVDRV10_H) && defined(QNVDRV10_DECLARES_PLATFORM) && defined(_WINGDI_)
#error "Include <windows.h> before qnvdrv10.h: it was included between two inclusions of qnvdrv10.h"
#endif

#ifndef QNVDRV10_H
#define QNVDRV10_H

#include <stdint.h>

/* The version of this header and of the library built with it. QNVDRV10_VERSION can be compared: 1.2.3 is 10203. */
#define QNVDRV10_VERSION_MAJOR 0
#define QNVDRV10_VERSION_MINOR 1
#define QNVDRV10_VERSION_PATCH 0
#define QNVDRV10_VERSION (QNVDRV10_VERSION_MAJOR * 10000 + QNVDRV10_VERSION_MINOR * 100 + QNVDRV10_VERSION_PATCH)

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

#define QNV_KIND_SCALED 0u     /* draws at resolutionA, keeps a 24-bit band at resolutionB */
#define QNV_KIND_RASTER 1u     /* plain band; dual-plane when QNVEnable gets a second buffer */
#define QNV_KIND_DUAL_PLANE 2u /* accepted by QNVGetDeviceInfo only */

#pragma pack(push, 1)

/* What kind of device to make and how large it is. 16 bytes, read by QNVEnable, which copies it, and by
 * QNVGetDeviceInfo. */
typedef struct DeviceDescription {
  uint16_t kind;         /*  0  QNV_KIND_... */
  uint16_t bitsPerPixel; /*  2  24 (blue, green, red bytes) or 8 (one gray byte); on kind 0 a value of 0
                                selects gray mode over three bytes a pixel */
  uint16_t resolutionA;  /*  4  dots per inch of the page; must not be 0 */
  uint32_t width;        /*  6  pixels of a row of the band's memory, from which the bytes of a row follow */
  uint32_t height;       /* 10  rows of the band's memory; the clear escape sets that many */
  uint16_t resolutionB;  /* 14  dots per inch of the device */
} DeviceDescription;

/* A rectangle: a clip or the opaque rectangle of text, in page pixels, or the place of the band, in band pixels. 16
 * bytes. The first byte of the band's memory belongs to the pixel (left, top) of the band's rectangle. */
typedef struct BandRect {
  int32_t left;   /*  0 */
  int32_t top;    /*  4 */
  int32_t right;  /*  8  exclusive */
  int32_t bottom; /* 12  exclusive */
} BandRect;

/* The size of a device. 8 bytes, written by QNVGetDeviceInfo. */
typedef struct DeviceSize {
  uint32_t width;  /* 0  pixels: the described width x B / A, rounded on kind 0, truncated on the others */
  uint32_t height; /* 4  rows, likewise */
} DeviceSize;

/* Where the host's coordinates begin, in page pixels. 8 bytes, the data of escape QNV_SET_ORIGIN. */
typedef struct DrawingOrigin {
  int32_t x; /* 0  added to every x that a drawing call receives, in clip rectangles too */
  int32_t y; /* 4  added to every y */
} DrawingOrigin;

/* Escapes of QNVControl; only the low 16 bits of a code are compared. */
#define QNV_SET_ORIGIN 0x2000u    /* data: DrawingOrigin */
#define QNV_SET_BAND_RECT 0x2001u /* data: BandRect; another place for the same memory */
#define QNV_CLEAR_BAND 0x2002u    /* data unused; sets the whole buffer to white and the tag plane to 1 */

/* Values of the tag plane of a dual-plane device. */
#define QNV_TAG_GRAPHICS 1u
#define QNV_TAG_IMAGE 3u

/* ---- Drawing records ------------------------------------------------------------------------------ */

/* How a call combines what it paints with the band: 42 bytes, the platform's draw mode for drivers. Colors are
 * physical colors (see QNVColorInfo). The library writes a single field, BreakErr, when QNVDevExtTextOut measures. */
typedef struct DRAWMODE {
  int16_t Rop2;           /*  0  R2_..., 1..16; only the low four bits of Rop2 - 1 are used */
  int16_t bkMode;         /*  2  TRANSPARENT or OPAQUE */
  uint32_t bkColor;       /*  4  0x00BBGGRR */
  uint32_t TextColor;     /*  8  0x00BBGGRR */
  int16_t TBreakExtra;    /* 12  pixels to distribute over the break characters of a line */
  int16_t BreakExtra;     /* 14  not read */
  int16_t BreakErr;       /* 16  remainder of this distribution, carried from one call of a line to the next */
  int16_t BreakRem;       /* 18  not read */
  int16_t BreakCount;     /* 20  break characters in the line */
  int16_t CharacterExtra; /* 22  pixels added after every character */
  uint32_t LbkColor;      /* 24  not read */
  uint32_t LTextColor;    /* 28  not read */
  uint8_t reserved[10];   /* 32  not read */
} DRAWMODE;

/* A source of QNVDevBitBlt, or the bitmap of a pattern brush: 14 bytes, the platform's BITMAP. The top row comes
 * first. With one plane of one bit a pixel, the most significant bit is the leftmost pixel, and 1 stands for
 * bkColor, 0 for TextColor. All other sources hold 3 bytes a pixel (red, green, blue) for 24-bit bands and one
 * gray byte a pixel for 8-bit bands and for kind 0 with a described depth other than 24. On 8-bit bands
 * and kind 0 the first pixel x of a transfer is read at byte x * bmBitsPixel / 8 of its row, so a row must also hold
 * bmWidth pixels of bmBitsPixel. A pattern brush takes the top left 8 x 8 pixels, whatever bmWidth and bmHeight say. */
typedef struct SourceBitmap {
  int16_t bmType;        /*  0  not read */
  int16_t bmWidth;       /*  2  pixels of a row; none to the right of them is read */
  int16_t bmHeight;      /*  4  rows; none below them is read */
  uint16_t bmWidthBytes; /*  6  bytes from one row to the next */
  uint8_t bmPlanes;      /*  8 */
  uint8_t bmBitsPixel;   /*  9 */
  const void *bmBits;    /* 10  row 0 */
} SourceBitmap;

/* A pen before it is realised. 10 bytes. */
typedef struct LogicalPen {
  uint16_t style;  /* 0  PS_... */
  int16_t widthX;  /* 2  not used for drawing */
  int16_t widthY;  /* 4 */
  uint32_t colour; /* 6  0x00BBGGRR */
} LogicalPen;

/* A realised pen. 10 bytes. */
typedef struct PhysicalPen {
  uint16_t style;  /* 0  PS_SOLID or PS_NULL; every other style is realised as PS_SOLID */
  int16_t widthX;  /* 2  copied */
  int16_t widthY;  /* 4  copied */
  uint32_t colour; /* 6  physical color */
} PhysicalPen;

/* A brush before it is realised. 12 bytes where pointers have four. */
typedef struct LogicalBrush {
  uint16_t style;      /* 0  BS_SOLID, BS_HOLLOW, BS_HATCHED, BS_PATTERN */
  uintptr_t colour;    /* 2  0x00BBGGRR; for BS_PATTERN the address of a SourceBitmap instead */
  int16_t hatch;       /* 6 where pointers have four: HS_... */
  uint32_t background; /* 8 where pointers have four: physical color of the gaps of a hatch, not converted */
} LogicalBrush;

/* A realised brush. 268 bytes. A cell holds a physical color; its top byte is 0xFF for foreground, 0 for background. */
typedef struct PhysicalBrush {
  uint16_t style;        /*  0  as the logical brush */
  uint16_t hatch;        /*  2  as the logical brush */
  uint16_t patternDepth; /*  4  24, 8 or 1 for pattern brushes, else 0 */
  uint8_t hatchScale[2]; /*  6  pixels that a cell covers, horizontally and vertically; above 2 counts as 2 */
  uint32_t colour;       /*  8  physical color; 0 for a 1-bit pattern */
  uint32_t cells[64];    /* 12  8 rows of 8, top row first, leftmost first */
} PhysicalBrush;

/* A raster font: the first 33 bytes of the platform's font record, of which some fields are read. The character table
 * follows at byte 49 (entries of 4 bytes: u16 width, u16 offset) when dfType is exactly 0x200, else at byte 82 (entries
 * of 6 bytes: u16 width, u32 offset). A glyph lies at fontBase + offset: columns of 8 pixels, dfPixHeight bytes each,
 * top row first, bit 0x80 leftmost. */
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
#define QNVDRV10_DECLARES_PLATFORM
/* The description of a device-independent bitmap: 40 bytes. At 1, 4 and 8 bits the color table follows at byte
 * biSize (four bytes a color: blue, green, red, unused); at 16 bits with BI_BITFIELDS three masks follow at byte 40
 * (red, green, blue; four bytes each, the upper two not used).
 *
 * Run-length data (BI_RLE8, BI_RLE4) has no length here: the host puts 260 + 2 * |biHeight| zero bytes behind the bytes
 * of the document. Nothing beyond them is read, whatever the data holds. An end code as the last two bytes is not
 * enough, because hostile data may skip it.
 *
 * A compiler that meets <windows.h> after this header stops at its record of the same name and prints this tag. */
typedef struct include_windows_h_before_qnvdrv10_h {
  uint32_t biSize;         /* 40..4096 at 1, 4 and 8 bits, other values are refused; not used at other depths */
  int32_t biWidth;         /* pixels, 1..32767; other values are refused */
  int32_t biHeight;        /* rows, 1..32767 or negative: top row stored first; other values are refused */
  uint16_t biPlanes;       /* 1; other values are refused */
  uint16_t biBitCount;     /* 1, 4, 8, 16, 24, 32; other values are refused */
  uint32_t biCompression;  /* BI_...; 4, 5 and values above 6 are refused; 6 is read as uncompressed rows */
  uint32_t biSizeImage;    /* not read */
  int32_t biXPelsPerMeter; /* not read */
  int32_t biYPelsPerMeter; /* not read */
  uint32_t biClrUsed;      /* colors of the table; 0: all that the depth allows; missing ones are white */
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

/* Extended raster code of QNVStretchDIBits: each byte of the band becomes the smaller of band and image. */
#define ROP_MINIMUM 0x01000000u

/* Span encodings of QNVOutput. */
#define OS_SCANLINES 4u    /* 104 means the same */
#define OS_BANDED_SPANS 5u /* 105 means the same */
#define OS_ROW_RECORDS 205u
#define OS_ROW_SPANS 305u
#define OS_BYTE_DELTAS 405u
#define OS_NIBBLE_DELTAS 505u
#define OS_BEGINNSCAN 80u
#define OS_ENDNSCAN 81u

/* ---- Functions -------------------------------------------------------------------------------------- */

/* Makes a device that paints into one band and returns its handle. Returns null for a null description or bandRect, an
 * unknown kind, kind 1 with a depth other than 24 and 8, kind 0 with a resolution A of 0, and without memory.
 *   buffer        memory of the band: rows of (width * bytes a pixel + 3) & ~3 bytes, top row first; 3 bytes a pixel on
 *                 kind 0. It belongs to the host and must live until QNVDisable. With a null buffer nothing is painted.
 *   secondBuffer  unless null, makes kind 1 a dual-plane device and is the memory of its tag plane: one byte a pixel,
 *                 rows of (width + 3) & ~3 bytes. Such a device is made whatever bitsPerPixel says; its clear escape
 *                 writes three bytes a pixel into `buffer` even when another depth is described. */
DeviceHandle *QNV_CALL QNVEnable(const DeviceDescription *description, const BandRect *bandRect, void *buffer,
                                 void *secondBuffer);

/* Destroys the device and frees the handle. The buffers of the host are left alone, and so is a bad handle. */
void QNV_CALL QNVDisable(DeviceHandle *handle);

/* Reports the size of a device before it is made: writes the described size, scaled from resolution A to B, and returns
 * 8, the bytes written. Returns 0 and writes nothing for a null description or result, an unknown kind, kind 1 with a
 * depth other than 24 and 8, and kind 0 with a resolution A of 0. */
uint32_t QNV_CALL QNVGetDeviceInfo(const DeviceDescription *description, DeviceSize *result);

/* Escapes: sets the drawing origin, moves the band, or clears it. `extra` is not read. 16-bit result: 1 when done, 0
 * for an unknown code or null data where data is needed. */
uint32_t QNV_CALL QNVControl(DeviceHandle *handle, uint32_t code, const void *data, void *extra);

/* Converts a logical color 0x00BBGGRR to a physical color: the same on color devices, the gray level
 * (30 red + 59 green + 11 blue) / 100 in three bytes on gray ones. Returns it and stores it at `result` unless null. */
uint32_t QNV_CALL QNVColorInfo(DeviceHandle *handle, uint32_t colour, uint32_t *result);

/* Realises a pen (LogicalPen to PhysicalPen) or a brush (LogicalBrush to PhysicalBrush). Only the low 16 bits of `kind`
 * are used; `extra` is not read. With a null `output` returns the size of the record, 10 or 268. Otherwise returns
 * 0x8002 for a solid brush, 0x8000 for other objects, and 0 for an unknown kind, a null input, a brush style above 3,
 * or a pattern without bitmap or bits. */
uint32_t QNV_CALL QNVRealizeObject(DeviceHandle *handle, uint32_t kind, const void *input, void *output,
                                   const void *extra);

/* Reads or writes one pixel at page coordinates. With a null drawMode reads it: returns the pixel with its first band
 * byte in bits 0..7, or 0 when it is clipped away. Otherwise combines `colour` (bits 16..23 with the first byte) with
 * the pixel by Rop2, the only field of the draw mode that is read, and returns 0. With a null `clip` nothing is read or
 * written. */
uint32_t QNV_CALL QNVPixel(DeviceHandle *handle, int32_t x, int32_t y, uint32_t colour, const DRAWMODE *drawMode,
                           const BandRect *clip);

/* Writes like QNVPixel every pixel of the rectangle with these two corners, both included. Returns 0. */
uint32_t QNV_CALL QNVPolyPixel(DeviceHandle *handle, int32_t x1, int32_t y1, int32_t x2, int32_t y2, uint32_t colour,
                               const DRAWMODE *drawMode, const BandRect *clip);

/* Combines source, pattern and band over a rectangle by a ternary raster operation, whose index is in bits 16..23 of
 * `rop`. `source` is read only when the operation uses the source; `brush` and `drawMode` give the pattern, and with a
 * null drawMode a brush that is not solid keeps the pattern of the call before. A null `clip` paints nothing; a clip of
 * four zeros after the origin is added does not limit. 16-bit result: 1 whatever was painted; 0 when a dual-plane
 * device cannot tag the transfer. */
uint32_t QNV_CALL QNVDevBitBlt(DeviceHandle *handle, int32_t destX, int32_t destY, const SourceBitmap *source,
                               int32_t srcX, int32_t srcY, int32_t width, int32_t height, uint32_t rop,
                               const PhysicalBrush *brush, const DRAWMODE *drawMode, const BandRect *clip);

/* Paints a list of spans (OS_...) with the brush or, without one, the pen, combined by drawMode->Rop2; a null drawMode
 * keeps the pattern of the call before. Only the low 16 bits of `style` and `count` are used. `points` need not be
 * aligned. 16-bit result: 1 for a known style, even when all was clipped; 0xFFFF for an unknown one (0 on a dual-plane
 * device whose tag plane holds images); 0 for a null clip.
 *
 *   OS_SCANLINES      count word pairs: (unused, y), then (left, right) ...
 *   OS_BANDED_SPANS   count records: n, top, bottom, n words (left, right) ..., n again
 *   OS_ROW_RECORDS    y, then count rows: n, n words (left, right) ...; an odd n reads one word more
 *   OS_ROW_SPANS      y, then count rows: left, right
 *   OS_BYTE_DELTAS    y, left, right, then a byte pair (dLeft, dRight) for each further row
 *   OS_NIBBLE_DELTAS  the same with one byte a row: low nibble dLeft, high nibble dRight, -8..7
 *
 * A record with a negative n paints nothing; when the next record would lie before the list, the list ends.
 */
uint32_t QNV_CALL QNVOutput(DeviceHandle *handle, uint32_t style, uint32_t count, const int16_t *points,
                            const PhysicalPen *pen, const PhysicalBrush *brush, const DRAWMODE *drawMode,
                            const BandRect *clip);

/* Draws or measures text in a raster font. (x, y) is the top left of the first character cell. Only the low 16 bits of
 * `count`, `fontOffset` and `options` are used.
 *
 *   clip        may be null; then the described size limits the glyphs
 *   string      one or two bytes a character, as the font says. Codes of two-byte fonts index the character
 *               table without a check: the host maps the codes of documents to entries that the table has, or
 *               provides all 65,536 entries (393,216 bytes from byte 82 on)
 *   count       characters, signed; 0 and negative: measures |count| characters and draws nothing
 *   fontBase    glyph offsets count from here; the FONTINFO is fontOffset bytes behind it
 *   textXForm   not read
 *   charWidths  the advance of each character, instead of its width in the font; may be null
 *   opaqueRect  ETO_OPAQUE fills it with the background color, ETO_CLIPPED clips the glyphs to it; may be null
 *
 * Returns the advance cut to 16 bits. When measuring returns (dfPixHeight << 16) | (advance & 0xFFFF) and updates
 * drawMode->BreakErr. */
int32_t QNV_CALL QNVDevExtTextOut(DeviceHandle *handle, int32_t x, int32_t y, const BandRect *clip, const void *string,
                                  int32_t count, const void *fontBase, uint32_t fontOffset, DRAWMODE *drawMode,
                                  const void *textXForm, const int16_t *charWidths, const BandRect *opaqueRect,
                                  uint32_t options);

/* Paints a rectangle of a device-independent bitmap, stretched to the size of the destination, and mirrored where the
 * signs of the extents differ.
 *
 *   get              low 16 bits; 1 asks to read the band back, which is refused; all other values paint
 *   srcY             counted from the bottom row of the picture
 *   bitmapInfo       a BITMAPINFOHEADER followed by its color table or masks
 *   conversionInfo   not read
 *   rop              SRCCOPY, any other ternary code, or ROP_MINIMUM
 *   brush, drawMode  as for QNVDevBitBlt, for codes that use a pattern
 *
 * 16-bit result: 1 when painted; 0 when refused (get = 1; null bits, bitmapInfo or clip; a bad header), when nothing is
 * visible, when a dual-plane device cannot tag the image, and without memory. */
uint32_t QNV_CALL QNVStretchDIBits(DeviceHandle *handle, uint32_t get, int32_t dstX, int32_t dstY, int32_t dstWidth,
                                   int32_t dstHeight, int32_t srcX, int32_t srcY, int32_t srcWidth, int32_t srcHeight,
                                   const void *bits, const void *bitmapInfo, const void *conversionInfo, uint32_t rop,
                                   const PhysicalBrush *brush, const DRAWMODE *drawMode, const BandRect *clip);

/* Paints numScans rows of a bitmap, from row startScan on, unscaled: QNVStretchDIBits with SRCCOPY, biWidth as both
 * widths, startScan as srcY and numScans as both heights. Same result. */
uint32_t QNV_CALL QNVDevSetDIBitsToDevice(DeviceHandle *handle, int32_t x, int32_t y, uint32_t startScan,
                                          uint32_t numScans, const BandRect *clip, const DRAWMODE *drawMode,
                                          const void *bits, const void *bitmapInfo, const void *conversionInfo);

/* ---- Loading the library by hand ---------------------------------------------------------------------- */

/* The types of the functions, for what GetProcAddress or dlsym returns. */
typedef DeviceHandle *(QNV_CALL *QNVEnableFunction)(const DeviceDescription *description, const BandRect *bandRect,
                                                    void *buffer, void *secondBuffer);
typedef void(QNV_CALL *QNVDisableFunction)(DeviceHandle *handle);
typedef uint32_t(QNV_CALL *QNVGetDeviceInfoFunction)(const DeviceDescription *description, DeviceSize *result);
typedef uint32_t(QNV_CALL *QNVControlFunction)(DeviceHandle *handle, uint32_t code, const void *data, void *extra);
typedef uint32_t(QNV_CALL *QNVColorInfoFunction)(DeviceHandle *handle, uint32_t colour, uint32_t *result);
typedef uint32_t(QNV_CALL *QNVRealizeObjectFunction)(DeviceHandle *handle, uint32_t kind, const void *input,
                                                     void *output, const void *extra);
typedef uint32_t(QNV_CALL *QNVPixelFunction)(DeviceHandle *handle, int32_t x, int32_t y, uint32_t colour,
                                             const DRAWMODE *drawMode, const BandRect *clip);
typedef uint32_t(QNV_CALL *QNVPolyPixelFunction)(DeviceHandle *handle, int32_t x1, int32_t y1, int32_t x2, int32_t y2,
                                                 uint32_t colour, const DRAWMODE *drawMode, const BandRect *clip);
typedef uint32_t(QNV_CALL *QNVDevBitBltFunction)(DeviceHandle *handle, int32_t destX, int32_t destY,
                                                 const SourceBitmap *source, int32_t srcX, int32_t srcY, int32_t width,
                                                 int32_t height, uint32_t rop, const PhysicalBrush *brush,
                                                 const DRAWMODE *drawMode, const BandRect *clip);
typedef uint32_t(QNV_CALL *QNVOutputFunction)(DeviceHandle *handle, uint32_t style, uint32_t count,
                                              const int16_t *points, const PhysicalPen *pen, const PhysicalBrush *brush,
                                              const DRAWMODE *drawMode, const BandRect *clip);
typedef int32_t(QNV_CALL *QNVDevExtTextOutFunction)(DeviceHandle *handle, int32_t x, int32_t y, const BandRect *clip,
                                                    const void *string, int32_t count, const void *fontBase,
                                                    uint32_t fontOffset, DRAWMODE *drawMode, const void *textXForm,
                                                    const int16_t *charWidths, const BandRect *opaqueRect,
                                                    uint32_t options);
typedef uint32_t(QNV_CALL *QNVStretchDIBitsFunction)(DeviceHandle *handle, uint32_t get, int32_t dstX, int32_t dstY,
                                                     int32_t dstWidth, int32_t dstHeight, int32_t srcX, int32_t srcY,
                                                     int32_t srcWidth, int32_t srcHeight, const void *bits,
                                                     const void *bitmapInfo, const void *conversionInfo, uint32_t rop,
                                                     const PhysicalBrush *brush, const DRAWMODE *drawMode,
                                                     const BandRect *clip);
typedef uint32_t(QNV_CALL *QNVDevSetDIBitsToDeviceFunction)(DeviceHandle *handle, int32_t x, int32_t y,
                                                            uint32_t startScan, uint32_t numScans, const BandRect *clip,
                                                            const DRAWMODE *drawMode, const void *bits,
                                                            const void *bitmapInfo, const void *conversionInfo);

/* The ordinals of the DLL's exports. A published number never changes. */
#define QNV_ORDINAL_QNVDevBitBlt 1
#define QNV_ORDINAL_QNVColorInfo 2
#define QNV_ORDINAL_QNVControl 3
#define QNV_ORDINAL_QNVDisable 4
#define QNV_ORDINAL_QNVEnable 5
#define QNV_ORDINAL_QNVOutput 8
#define QNV_ORDINAL_QNVPixel 9
#define QNV_ORDINAL_QNVRealizeObject 10
#define QNV_ORDINAL_QNVDevExtTextOut 14
#define QNV_ORDINAL_QNVDevSetDIBitsToDevice 21
#define QNV_ORDINAL_QNVStretchDIBits 28
#define QNV_ORDINAL_QNVGetDeviceInfo 100
#define QNV_ORDINAL_QNVPolyPixel 109

#ifdef __cplusplus
}
#endif

#endif
