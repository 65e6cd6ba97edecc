/* A complete host in one file: paints a page band by band and writes it as a BMP file.
 *
 *   host OUT.bmp
 *
 * Exit codes: 0 page written, 1 wrong arguments, 2 the file could not be written, 3 no memory, or a call that the
 * library refused.
 *
 * The host never has the whole page in memory. It owns the memory of one band, paints everything into it, passes its
 * rows on (here to a file, in a driver to the printer), moves the band down the page and starts again.
 */
#include <stdint.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#include "qnvdrv10.h"
#include "small_font.h"

enum {
  kPageWidth = 600, /* pixels: about A4 at 72 dpi */
  kPageHeight = 840,
  kDpi = 72,
  kBandRows = 96, /* a multiple of 16, the longest period of a pattern, which transfers count from the band's top */
  kBandCount = (kPageHeight + kBandRows - 1) / kBandRows,
  kStride = (kPageWidth * 3 + 3) & ~3 /* bytes of a band row: padded to 32 bits */
};

enum { kExitUsage = 1, kExitFile = 2, kExitLibrary = 3 };

/* Colors are passed with red in the low byte. */
#define RGB24(red, green, blue) ((uint32_t)(red) | (uint32_t)(green) << 8 | (uint32_t)(blue) << 16)

#define INK RGB24(32, 36, 48)
#define PAPER RGB24(255, 255, 255)

static const BandRect page_rect = {0, 0, kPageWidth, kPageHeight};

typedef struct Host {
  DeviceHandle *device;
  uint8_t *band; /* kBandRows rows of kStride bytes; the library paints here and never frees it */
  DRAWMODE mode; /* raster operation and colors of the next calls */
} Host;

static void fail(int code, const char *message) {
  fprintf(stderr, "host: %s\n", message);
  exit(code);
}

static void *allocate(size_t bytes) {
  void *memory = calloc(bytes, 1);
  if (memory == NULL) fail(kExitLibrary, "out of memory");
  return memory;
}

/* ---- The device --------------------------------------------------------------------------------------- */

/* The place of a band on the page. The last band ends with the page. */
static BandRect band_rect(int index) {
  BandRect rect = {0, index * kBandRows, kPageWidth, (index + 1) * kBandRows};
  if (rect.bottom > kPageHeight) rect.bottom = kPageHeight;
  return rect;
}

/* The library copies description and rectangle; only the band's memory has to live as long as the device. */
static void open_host(Host *host) {
  const DeviceDescription description = {QNV_KIND_RASTER, 24, kDpi, kPageWidth, kBandRows, kDpi};
  const BandRect first = band_rect(0);
  memset(host, 0, sizeof *host);
  host->band = allocate((size_t)kStride * kBandRows);
  host->device = QNVEnable(&description, &first, host->band, NULL);
  if (host->device == NULL) fail(kExitLibrary, "the library refused the device");
  host->mode.Rop2 = R2_COPYPEN;
  host->mode.bkMode = TRANSPARENT;
  host->mode.bkColor = PAPER;
  host->mode.TextColor = INK;
}

static void close_host(Host *host) {
  QNVDisable(host->device);
  free(host->band);
}

/* Only the low half of a 16-bit result is used. */
static void control(Host *host, uint32_t code, const void *data) {
  if ((QNVControl(host->device, code, data, NULL) & 0xFFFF) == 0) fail(kExitLibrary, "an escape was refused");
}

/* Moves the band and clears its memory to white. */
static void begin_band(Host *host, int index) {
  const BandRect rect = band_rect(index);
  control(host, QNV_SET_BAND_RECT, &rect);
  control(host, QNV_CLEAR_BAND, NULL);
}

/* Shifts everything that is drawn from here on, clip rectangles included. */
static void set_origin(Host *host, int32_t x, int32_t y) {
  const DrawingOrigin origin = {x, y};
  control(host, QNV_SET_ORIGIN, &origin);
}

/* ---- Brushes and figures ------------------------------------------------------------------------------ */

/* Drawing calls take realised brushes: records in memory of the host that need not be released. */
static PhysicalBrush realise(Host *host, const LogicalBrush *logical) {
  PhysicalBrush brush;
  memset(&brush, 0, sizeof brush);
  if (QNVRealizeObject(host->device, OBJ_BRUSH, logical, &brush, NULL) == 0) {
    fail(kExitLibrary, "a brush was refused");
  }
  return brush;
}

static PhysicalBrush solid_brush(Host *host, uint32_t color) {
  const LogicalBrush logical = {BS_SOLID, color, 0, 0};
  return realise(host, &logical);
}

static PhysicalBrush hatch_brush(Host *host, int16_t hatch, uint32_t color) {
  const LogicalBrush logical = {BS_HATCHED, color, hatch, PAPER};
  return realise(host, &logical);
}

/* Figures are lists of spans [left, right). The whole figure is passed for every band; the library paints the part
 * that lies in the current one. */
static void paint_spans(Host *host, uint32_t style, uint32_t count, const int16_t *points, const PhysicalBrush *brush) {
  const uint32_t result = QNVOutput(host->device, style, count, points, NULL, brush, &host->mode, &page_rect);
  if ((result & 0xFFFF) != 1) fail(kExitLibrary, "a span list was refused");
}

/* One span for the rows [top, bottom). */
static void fill_rect(Host *host, int left, int top, int right, int bottom, const PhysicalBrush *brush) {
  const int16_t points[] = {2, (int16_t)top, (int16_t)bottom, (int16_t)left, (int16_t)right, 2};
  paint_spans(host, OS_BANDED_SPANS, 1, points, brush);
}

/* One span a row. A pixel belongs to the disc when its centre does. */
static void fill_disc(Host *host, int centre_x, int centre_y, int radius, const PhysicalBrush *brush) {
  enum { kMaxRows = 128 };
  int16_t points[1 + 2 * kMaxRows];
  int16_t *point = points;
  int row;
  if (radius > kMaxRows / 2) radius = kMaxRows / 2;
  *point++ = (int16_t)(centre_y - radius);
  for (row = -radius; row < radius; ++row) {
    /* Coordinates are doubled, so that centres are integers: of the row 2 row + 1, of the last pixel 2 half - 1. */
    const int y = 2 * row + 1;
    int half = radius;
    while (half > 0 && (2 * half - 1) * (2 * half - 1) + y * y > 4 * radius * radius) --half;
    *point++ = (int16_t)(centre_x - half);
    *point++ = (int16_t)(centre_x + half);
  }
  paint_spans(host, OS_ROW_SPANS, (uint32_t)(2 * radius), points, brush);
}

/* ---- Text --------------------------------------------------------------------------------------------- */

enum {
  kGlyphs = SMALL_FONT_LAST - SMALL_FONT_FIRST + 1,
  kTableStart = 82, /* of the long character table; its entries have 6 bytes */
  kBitsStart = kTableStart + 6 * kGlyphs
};

typedef struct Font {
  uint8_t *block; /* font record, character table, glyph bits */
  int scale;
} Font;

static void put16(uint8_t *at, uint32_t value) {
  at[0] = (uint8_t)value;
  at[1] = (uint8_t)(value >> 8);
}

static void put32(uint8_t *at, uint32_t value) {
  put16(at, value & 0xFFFF);
  put16(at + 2, value >> 16);
}

/* A glyph's bits are columns of 8 pixels, one byte for each of its rows; here every pixel becomes scale x scale. */
static void put_glyph(uint8_t *bits, const SmallGlyph *glyph, int scale) {
  const int height = SMALL_FONT_ROWS * scale;
  int x, y;
  for (y = 0; y < height; ++y) {
    for (x = 0; x < glyph->width * scale; ++x) {
      if ((glyph->rows[y / scale] & 0x80 >> x / scale) != 0) bits[x / 8 * height + y] |= (uint8_t)(0x80 >> x % 8);
    }
  }
}

static int glyph_bytes(const SmallGlyph *glyph, int scale) {
  return (glyph->width * scale + 7) / 8 * SMALL_FONT_ROWS * scale;
}

static Font make_font(int scale) {
  Font font;
  FONTINFO info;
  int i, offset = kBitsStart;
  for (i = 0; i < kGlyphs; ++i) offset += glyph_bytes(&small_font[i], scale);
  font.block = allocate((size_t)offset);
  font.scale = scale;

  memset(&info, 0, sizeof info);
  info.dfPixHeight = (int16_t)(SMALL_FONT_ROWS * scale);
  info.dfPitchAndFamily = 1; /* widths come from the table */
  info.dfFirstChar = SMALL_FONT_FIRST;
  info.dfLastChar = SMALL_FONT_LAST;
  info.dfDefaultChar = '?' - SMALL_FONT_FIRST;
  info.dfBreakChar = ' ' - SMALL_FONT_FIRST;
  memcpy(font.block, &info, sizeof info);

  offset = kBitsStart;
  for (i = 0; i < kGlyphs; ++i) {
    uint8_t *entry = font.block + kTableStart + 6 * i;
    put16(entry, (uint32_t)(small_font[i].width * scale));
    put32(entry + 2, (uint32_t)offset);
    put_glyph(font.block + offset, &small_font[i], scale);
    offset += glyph_bytes(&small_font[i], scale);
  }
  return font;
}

/* A negative count measures: nothing is painted, and the low half of the result is the width in pixels. */
static int text_width(Host *host, const Font *font, const char *text) {
  const int32_t extent = QNVDevExtTextOut(host->device, 0, 0, &page_rect, text, -(int32_t)strlen(text), font->block, 0,
                                          &host->mode, NULL, NULL, NULL, 0);
  return extent & 0xFFFF;
}

/* (x, y): top left of the first character. The draw mode takes physical colors: on a gray device a gray level. */
static void draw_text(Host *host, const Font *font, int x, int y, uint32_t color, const char *text) {
  host->mode.TextColor = QNVColorInfo(host->device, color, NULL);
  QNVDevExtTextOut(host->device, x, y, &page_rect, text, (int32_t)strlen(text), font->block, 0, &host->mode, NULL, NULL,
                   NULL, 0);
}

/* The same on a box of the background color, and cut to it. */
static void draw_caption(Host *host, const Font *font, const BandRect *box, uint32_t background, const char *text) {
  const int x = (box->left + box->right - text_width(host, font, text)) / 2;
  const int y = (box->top + box->bottom - SMALL_FONT_ROWS * font->scale) / 2;
  const DRAWMODE before = host->mode;
  host->mode.bkColor = QNVColorInfo(host->device, background, NULL);
  host->mode.TextColor = QNVColorInfo(host->device, PAPER, NULL);
  QNVDevExtTextOut(host->device, x, y, &page_rect, text, (int32_t)strlen(text), font->block, 0, &host->mode, NULL, NULL,
                   box, ETO_OPAQUE | ETO_CLIPPED);
  host->mode = before;
}

/* ---- A run-length image ------------------------------------------------------------------------------- */

enum { kPictureWidth = 96, kPictureHeight = 64, kPictureColors = 14 };

/* All members are bytes or packed records, so the color table follows the header without a gap. */
typedef struct Picture {
  BITMAPINFOHEADER header;
  uint8_t colors[kPictureColors][4];                          /* blue, green, red, unused */
  uint8_t data[kPictureHeight * (2 * kPictureWidth + 2) + 2]; /* at most a code a pixel and an end a row */
} Picture;

static const uint8_t picture_colors[kPictureColors][4] = {
    {0x6E, 0x3A, 0x28, 0}, {0x80, 0x44, 0x50, 0}, {0x78, 0x50, 0x86, 0}, {0x6C, 0x60, 0xBC, 0}, /* sky, top down */
    {0x5C, 0x78, 0xE4, 0}, {0x5A, 0x9C, 0xF6, 0}, {0x78, 0xC8, 0xFC, 0}, {0xB4, 0xF0, 0xFF, 0}, /* ... and the sun */
    {0x6E, 0x46, 0x46, 0}, {0x5A, 0x3A, 0x3A, 0}, {0x46, 0x2E, 0x30, 0},                        /* water */
    {0x50, 0x2C, 0x3C, 0}, {0x3A, 0x1E, 0x28, 0}, {0x8C, 0xB8, 0xF0, 0}};                       /* hills, glitter */

/* Palette index of a pixel, y counted from the top: a sun that sets over water. */
static uint8_t picture_pixel(int x, int y) {
  enum { kSunX = 60, kSunY = 34, kSunRadius = 10, kHorizon = 40 };
  const int from_sun_x = x - kSunX, from_sun_y = y - kSunY;
  if (y < kHorizon) {
    if (2 * (kHorizon - y) < 26 - abs(x - 10)) return 12;
    if (2 * (kHorizon - y) < 40 - abs(x - 30)) return 11;
    if (from_sun_x * from_sun_x + from_sun_y * from_sun_y < kSunRadius * kSunRadius) return 7;
    return (uint8_t)((y * 7 + (x + y) % 2 * 20) / kHorizon);
  }
  if (abs(from_sun_x) < 4 + (y - kHorizon) / 2 && (3 * x + 7 * y) % 5 < 2) return 13;
  return (uint8_t)(8 + (y - kHorizon + (x + y) % 2 * 4) / 10);
}

static int run_length(int x, int y) {
  const uint8_t index = picture_pixel(x, y);
  int length = 1;
  while (x + length < kPictureWidth && picture_pixel(x + length, y) == index) ++length;
  return length;
}

/* Rows are stored bottom row first. A row ends with 0 0, the data with 0 1, where the library stops reading. (Data
 * from a document is not that reliable: zeros must follow it, see BITMAPINFOHEADER.) */
static size_t encode_picture(uint8_t *data) {
  uint8_t *next = data;
  int x, y;
  for (y = kPictureHeight - 1; y >= 0; --y) {
    for (x = 0; x < kPictureWidth; x += next[-2]) {
      next[0] = (uint8_t)run_length(x, y);
      next[1] = picture_pixel(x, y);
      next += 2;
    }
    next[0] = next[1] = 0;
    next += 2;
  }
  next[0] = 0;
  next[1] = 1;
  return (size_t)(next + 2 - data);
}

static Picture *make_picture(void) {
  Picture *picture = allocate(sizeof *picture);
  picture->header.biSize = sizeof picture->header;
  picture->header.biWidth = kPictureWidth;
  picture->header.biHeight = kPictureHeight;
  picture->header.biPlanes = 1;
  picture->header.biBitCount = 8;
  picture->header.biCompression = BI_RLE8;
  picture->header.biSizeImage = (uint32_t)encode_picture(picture->data);
  picture->header.biClrUsed = kPictureColors;
  memcpy(picture->colors, picture_colors, sizeof picture->colors);
  return picture;
}

/* Stretches the picture to a rectangle. The result is not checked: it is 0 also when the image lies in another band. */
static void draw_picture(Host *host, const BandRect *to, const Picture *picture) {
  QNVStretchDIBits(host->device, 0, to->left, to->top, to->right - to->left, to->bottom - to->top, 0, 0, kPictureWidth,
                   kPictureHeight, picture->data, &picture->header, NULL, SRCCOPY, NULL, &host->mode, &page_rect);
}

/* ---- The page ----------------------------------------------------------------------------------------- */

typedef struct Page {
  Font small, large, title;
  Picture *picture;
} Page;

static void make_page(Page *page) {
  page->small = make_font(1);
  page->large = make_font(2);
  page->title = make_font(5);
  page->picture = make_picture();
}

static void free_page(Page *page) {
  free(page->small.block);
  free(page->large.block);
  free(page->title.block);
  free(page->picture);
}

static void draw_heading(Host *host, const Page *page) {
  static const char title[] = "Band by band";
  const PhysicalBrush ink = solid_brush(host, INK);
  draw_text(host, &page->title, (kPageWidth - text_width(host, &page->title, title)) / 2, 44, INK, title);
  fill_rect(host, 48, 104, kPageWidth - 48, 107, &ink);
  draw_text(host, &page->large, 48, 120, INK, "Fills, hatches, text and an image,");
  draw_text(host, &page->large, 48, 142, INK, "painted while the band moves down the page.");
}

/* Drawn at (0, 0); the origin moves it to its place. */
static void draw_colors(Host *host) {
  static const uint32_t colors[] = {RGB24(214, 48, 49),  RGB24(232, 126, 4), RGB24(246, 201, 14), RGB24(39, 154, 72),
                                    RGB24(24, 140, 170), RGB24(52, 84, 180), RGB24(128, 62, 152), RGB24(80, 80, 88)};
  int i;
  set_origin(host, 48, 180);
  for (i = 0; i < 8; ++i) {
    const PhysicalBrush brush = solid_brush(host, colors[i]);
    fill_rect(host, i * 63, 0, i * 63 + 63, 40, &brush);
  }
  set_origin(host, 0, 0);
}

static void draw_hatches(Host *host, const Page *page) {
  static const char *const names[] = {"horizontal", "vertical", "forward", "backward", "cross", "diagonal cross"};
  const PhysicalBrush tint = solid_brush(host, RGB24(226, 234, 246));
  int16_t hatch;
  for (hatch = HS_HORIZONTAL; hatch <= HS_DIAGCROSS; ++hatch) {
    const int left = 48 + hatch * 86;
    const PhysicalBrush lines = hatch_brush(host, hatch, RGB24(52, 84, 180));
    fill_rect(host, left, 240, left + 74, 304, &tint);
    fill_rect(host, left, 240, left + 74, 304, &lines); /* the background mode is transparent: gaps show the tint */
    draw_text(host, &page->small, left, 309, INK, names[hatch]);
  }
}

/* Three colors that mix like inks: R2_MASKPEN keeps the bits that both the band and the brush have. */
static void draw_discs(Host *host) {
  const PhysicalBrush cyan = solid_brush(host, RGB24(0, 180, 255));
  const PhysicalBrush magenta = solid_brush(host, RGB24(255, 64, 190));
  const PhysicalBrush yellow = solid_brush(host, RGB24(255, 230, 0));
  host->mode.Rop2 = R2_MASKPEN;
  fill_disc(host, 116, 406, 54, &cyan);
  fill_disc(host, 176, 406, 54, &magenta);
  fill_disc(host, 146, 458, 54, &yellow);
  host->mode.Rop2 = R2_COPYPEN;
}

static void draw_image(Host *host, const Page *page) {
  static const BandRect frame = {262, 346, 554, 542}, image = {264, 348, 552, 540}, caption = {264, 518, 552, 540};
  const PhysicalBrush ink = solid_brush(host, INK);
  fill_rect(host, frame.left, frame.top, frame.right, frame.bottom, &ink);
  draw_picture(host, &image, page->picture);
  draw_caption(host, &page->small, &caption, INK, "96 x 64 pixels, run-length coded, three times as large");
}

static void draw_letters(Host *host, const Page *page) {
  static const char *const lines[] = {"ABCDEFGHIJKLMNOPQRSTUVWXYZ 0123456789", "abcdefghijklmnopqrstuvwxyz .,:;!?-+*/=",
                                      "The quick brown fox jumps over the lazy dog."};
  int i;
  for (i = 0; i < 3; ++i) draw_text(host, &page->large, 48, 596 + 26 * i, INK, lines[i]);
  for (i = 0; i < 3; ++i) draw_text(host, &page->small, 48, 692 + 13 * i, RGB24(128, 62, 152), lines[i]);
}

static void draw_footer(Host *host, const Page *page) {
  char text[80];
  snprintf(text, sizeof text, "%d x %d pixels in %d bands of %d rows", kPageWidth, kPageHeight, kBandCount, kBandRows);
  draw_text(host, &page->small, 48, 780, INK, text);
}

/* Bars that cross every band edge. Patterns of spans count from the corner of the page, so there is no seam. */
static void draw_bars(Host *host) {
  const PhysicalBrush bar = hatch_brush(host, HS_BDIAGONAL, RGB24(214, 48, 49));
  const PhysicalBrush edge = solid_brush(host, RGB24(214, 48, 49));
  fill_rect(host, 12, 12, 28, kPageHeight - 12, &bar);
  fill_rect(host, kPageWidth - 28, 12, kPageWidth - 12, kPageHeight - 12, &bar);
  fill_rect(host, 28, kPageHeight - 16, kPageWidth - 28, kPageHeight - 12, &edge);
}

static void draw_page(Host *host, const Page *page) {
  draw_heading(host, page);
  draw_colors(host);
  draw_hatches(host, page);
  draw_discs(host);
  draw_image(host, page);
  draw_letters(host, page);
  draw_footer(host, page);
  draw_bars(host);
}

/* ---- The file ----------------------------------------------------------------------------------------- */

/* A BMP file of negative height is stored top row first and has the bytes of a 24-bit band: bands are written as they
 * are. */
static int write_header(FILE *file) {
  enum { kHeaderBytes = 54, kPixelsPerMetre = 2835 };
  uint8_t header[kHeaderBytes] = {'B', 'M'};
  put32(header + 2, kHeaderBytes + (uint32_t)kStride * kPageHeight);
  put32(header + 10, kHeaderBytes);
  put32(header + 14, 40);
  put32(header + 18, kPageWidth);
  put32(header + 22, (uint32_t)-kPageHeight);
  put16(header + 26, 1);
  put16(header + 28, 24);
  put32(header + 34, (uint32_t)kStride * kPageHeight);
  put32(header + 38, kPixelsPerMetre);
  put32(header + 42, kPixelsPerMetre);
  return fwrite(header, sizeof header, 1, file) == 1;
}

static int write_band(FILE *file, const Host *host, int index) {
  const BandRect rect = band_rect(index);
  const size_t rows = (size_t)(rect.bottom - rect.top);
  return fwrite(host->band, kStride, rows, file) == rows;
}

static int print_page(FILE *file, Host *host, const Page *page) {
  int index;
  if (!write_header(file)) return 0;
  for (index = 0; index < kBandCount; ++index) {
    begin_band(host, index);
    draw_page(host, page);
    if (!write_band(file, host, index)) return 0;
  }
  return 1;
}

int main(int argc, char **argv) {
  Host host;
  Page page;
  FILE *file;
  int written;
  if (argc != 2) fail(kExitUsage, "usage: host OUT.bmp");
  file = fopen(argv[1], "wb");
  if (file == NULL) {
    perror(argv[1]);
    return kExitFile;
  }
  open_host(&host);
  make_page(&page);
  written = print_page(file, &host, &page);
  free_page(&page);
  close_host(&host);
  if (fclose(file) != 0 || !written) {
    fprintf(stderr, "host: %s: could not be written whole\n", argv[1]);
    return kExitFile;
  }
  return 0;
}
