// Draws one view of a page onto its canvas: regions, overlays, grid, rulers and marks, from plain values.
import type { Rect } from '../engine/contract';
import type { Camera } from '../model/state';
import { type PageBox, type Size, kBytesScale, kGridScale } from './camera';
import type { Region } from './regions';

export const kRuler = 20; // CSS pixels, at the left and at the top

export interface Colors {
  surface: string;
  paper: string;
  ruler: string;
  rulerText: string;
  border: string;
  grid: string;
  mark: string; // the current call
  markBack: string; // beside it, so that it shows on every picture
  pixel: string;
  difference: string;
  band: string;
}

export function readColors(element: Element): Colors {
  const style = getComputedStyle(element);
  const color = (name: string) => style.getPropertyValue(`--${name}`).trim();
  return {
    surface: color('canvas'),
    paper: color('canvas-paper'),
    ruler: color('panel'),
    rulerText: color('muted'),
    border: color('border-strong'),
    grid: color('canvas-grid'),
    mark: color('canvas-mark'),
    markBack: color('canvas-mark-back'),
    pixel: color('canvas-pixel'),
    difference: color('canvas-difference'),
    band: color('canvas-band'),
  };
}

// A canvas with the camera that everything on it is drawn through.
export class Painting {
  constructor(
    readonly context: CanvasRenderingContext2D,
    readonly camera: Camera,
    readonly view: Size, // without the rulers, CSS pixels
    readonly density: number, // canvas pixels a CSS pixel
    readonly colors: Colors,
  ) {}

  x(pageX: number): number {
    return Math.round((kRuler + (pageX - this.camera.x) * this.camera.scale) * this.density);
  }

  y(pageY: number): number {
    return Math.round((kRuler + (pageY - this.camera.y) * this.camera.scale) * this.density);
  }

  clear(page?: PageBox): void {
    const { context, colors, density } = this;
    context.setTransform(1, 0, 0, 1, 0, 0);
    context.globalAlpha = 1;
    context.fillStyle = colors.surface;
    context.fillRect(0, 0, (this.view.width + kRuler) * density, (this.view.height + kRuler) * density);
    if (!page) return;
    context.fillStyle = colors.paper;
    this.box([page.left, page.top, page.left + page.width, page.top + page.height], (x, y, width, height) =>
      context.fillRect(x, y, width, height),
    );
  }

  image(picture: OffscreenCanvas, left: number, top: number, width: number, height: number, opacity = 1): void {
    const { context } = this;
    const screen = this.camera.scale * this.density * (width / picture.width);
    context.imageSmoothingEnabled = screen < 1;
    // Pictures are never reduced to less than half: no pixel between two others is left out.
    context.imageSmoothingQuality = 'low';
    context.globalAlpha = opacity;
    const x = this.x(left);
    const y = this.y(top);
    context.drawImage(picture, x, y, this.x(left + width) - x, this.y(top + height) - y);
    context.globalAlpha = 1;
  }

  region(region: Region, opacity = 1): void {
    this.image(region.canvas, region.left, region.top, region.width, region.height, opacity);
  }

  private box(rect: Rect, draw: (x: number, y: number, width: number, height: number) => void): void {
    const x = this.x(rect[0]);
    const y = this.y(rect[1]);
    draw(x, y, this.x(rect[2]) - x, this.y(rect[3]) - y);
  }

  // A frame just outside the pixels of the rectangle, dark beside light.
  frame(rect: Rect, color: string, options: { dashed?: boolean; thick?: boolean } = {}): void {
    const { context, density } = this;
    const line = (options.thick ? 2 : 1) * density;
    this.box(rect, (x, y, width, height) => {
      context.lineWidth = line + 2 * density;
      context.strokeStyle = this.colors.markBack;
      context.setLineDash([]);
      context.strokeRect(x - line / 2, y - line / 2, width + line, height + line);
      context.lineWidth = line;
      context.strokeStyle = color;
      if (options.dashed) context.setLineDash([5 * density, 4 * density]);
      context.strokeRect(x - line / 2, y - line / 2, width + line, height + line);
      context.setLineDash([]);
    });
  }

  // Lines where a band ends.
  bandEdges(tops: readonly number[], page: PageBox): void {
    const { context, density } = this;
    context.strokeStyle = this.colors.band;
    context.lineWidth = density;
    context.setLineDash([2 * density, 4 * density]);
    context.beginPath();
    for (const top of tops) {
      context.moveTo(this.x(page.left), this.y(top) + 0.5);
      context.lineTo(this.x(page.left + page.width), this.y(top) + 0.5);
    }
    context.stroke();
    context.setLineDash([]);
  }

  private visible(page: PageBox): Rect {
    const { camera, view } = this;
    return [
      Math.max(page.left, Math.floor(camera.x)),
      Math.max(page.top, Math.floor(camera.y)),
      Math.min(page.left + page.width, Math.ceil(camera.x + view.width / camera.scale)),
      Math.min(page.top + page.height, Math.ceil(camera.y + view.height / camera.scale)),
    ];
  }

  grid(page: PageBox): void {
    if (this.camera.scale < kGridScale) return;
    const { context } = this;
    const [left, top, right, bottom] = this.visible(page);
    context.strokeStyle = this.colors.grid;
    context.lineWidth = 1;
    context.beginPath();
    for (let x = left; x <= right; x++) {
      context.moveTo(this.x(x) + 0.5, this.y(top));
      context.lineTo(this.x(x) + 0.5, this.y(bottom));
    }
    for (let y = top; y <= bottom; y++) {
      context.moveTo(this.x(left), this.y(y) + 0.5);
      context.lineTo(this.x(right), this.y(y) + 0.5);
    }
    context.stroke();
  }

  // The bytes of every pixel of the region in band byte order, where there is room for them.
  bytes(region: Region, page: PageBox, isGray: boolean): void {
    if (this.camera.scale < kBytesScale || region.width !== region.canvas.width) return;
    const { context, density, camera } = this;
    const visible = this.visible(page);
    context.font = `${12 * density}px ui-monospace, monospace`;
    context.textAlign = 'center';
    context.textBaseline = 'middle';
    const right = Math.min(visible[2], region.left + region.width);
    const bottom = Math.min(visible[3], region.top + region.height);
    const middle = (camera.scale * density) / 2;
    for (let y = Math.max(visible[1], region.top); y < bottom; y++) {
      for (let x = Math.max(visible[0], region.left); x < right; x++) {
        const at = ((y - region.top) * region.width + (x - region.left)) * 4;
        const [red = 0, green = 0, blue = 0, alpha = 0] = region.data.subarray(at, at + 4);
        if (alpha === 0) continue;
        context.fillStyle = red * 0.299 + green * 0.587 + blue * 0.114 > 140 ? '#000' : '#fff';
        (isGray ? [blue] : [blue, green, red]).forEach((value, index, all) => {
          const text = value.toString(16).toUpperCase().padStart(2, '0');
          const lineAt = (index - (all.length - 1) / 2) * 13 * density;
          context.fillText(text, this.x(x) + middle, this.y(y) + middle + lineAt);
        });
      }
    }
  }
}
