// The rulers at the edges of a picture. They are kept as pictures of their own, because their texts take longer to draw
// than the page: most steps from call to call leave them as they are.
import { type PageBox, rulerStep } from './camera';
import { type Painting, kRuler } from './painting';

interface Place {
  x: number;
  y: number;
}

export class Rulers {
  private readonly above = new OffscreenCanvas(1, 1);
  private readonly beside = new OffscreenCanvas(1, 1);
  private drawn: unknown[] = [];

  // cursor: the page pixel that both rulers mark
  paint(painting: Painting, page: PageBox, cursor: Place | null): void {
    const { camera, view, density, colors } = painting;
    const needs = [page, camera.scale, camera.x, camera.y, view, density, colors, cursor?.x, cursor?.y];
    if (needs.some((one, index) => !Object.is(one, this.drawn[index]))) {
      this.draw(painting, page, cursor);
      this.drawn = needs;
    }
    painting.context.drawImage(this.above, 0, 0);
    painting.context.drawImage(this.beside, 0, 0);
  }

  private draw(painting: Painting, page: PageBox, cursor: Place | null): void {
    const { colors, density, camera, view } = painting;
    const ruler = kRuler * density;
    const width = Math.ceil(view.width * density) + ruler;
    const height = Math.ceil(view.height * density) + ruler;
    const cursorSize = Math.max(1, camera.scale * density);
    const step = rulerStep(camera.scale);

    const begin = (canvas: OffscreenCanvas, canvasWidth: number, canvasHeight: number) => {
      canvas.width = canvasWidth;
      canvas.height = canvasHeight;
      const context = canvas.getContext('2d') as OffscreenCanvasRenderingContext2D;
      context.fillStyle = colors.ruler;
      context.fillRect(0, 0, canvasWidth, canvasHeight);
      context.font = `${10 * density}px system-ui, sans-serif`;
      context.strokeStyle = colors.border;
      context.lineWidth = 1;
      context.textAlign = 'left';
      context.textBaseline = 'middle';
      return context;
    };

    const above = begin(this.above, width, ruler);
    above.fillStyle = colors.grid;
    if (cursor) above.fillRect(painting.x(cursor.x), 0, cursorSize, ruler);
    above.fillStyle = colors.rulerText;
    above.beginPath();
    for (let x = Math.ceil(page.left / step) * step; x <= page.left + page.width; x += step) {
      const at = painting.x(x) + 0.5;
      if (at < -100 || at > width) continue;
      above.moveTo(at, ruler * 0.55);
      above.lineTo(at, ruler);
      above.fillText(String(x), at + 3 * density, ruler * 0.42);
    }
    above.stroke();
    above.strokeRect(ruler - 0.5, ruler - 0.5, width, ruler);

    const beside = begin(this.beside, ruler, height);
    beside.fillStyle = colors.grid;
    if (cursor) beside.fillRect(0, painting.y(cursor.y), ruler, cursorSize);
    beside.fillStyle = colors.rulerText;
    beside.beginPath();
    for (let y = Math.ceil(page.top / step) * step; y <= page.top + page.height; y += step) {
      const at = painting.y(y) + 0.5;
      if (at < -100 || at > height + 100) continue;
      beside.moveTo(ruler * 0.55, at);
      beside.lineTo(ruler, at);
      beside.save();
      beside.translate(ruler * 0.42, at - 3 * density);
      beside.rotate(-Math.PI / 2);
      beside.fillText(String(y), 0, 0);
      beside.restore();
    }
    beside.stroke();
    // The corner belongs to neither.
    beside.fillStyle = colors.ruler;
    beside.fillRect(0, 0, ruler, ruler);
    beside.strokeRect(ruler - 0.5, ruler - 0.5, ruler, height);
  }
}
