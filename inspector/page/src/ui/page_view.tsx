// The picture of a page with the line below it that tells about the pixel under the pointer.
import { useEffect, useRef } from 'preact/hooks';
import { cssOfBand, formatBytes } from '../model/format';
import { useApp } from '../model/state';
import { useStore } from '../model/store';
import { cursor } from '../view/cursor';
import { PageCanvas } from '../view/page_canvas';
import { addView } from '../view/views';
import { Legend } from './legend';

function Picture({ index }: { index: number }) {
  const canvas = useRef<HTMLCanvasElement>(null);
  const name = useApp((state) => state.files[index]?.name ?? '');
  const hasTwo = useApp((state) => state.files.length === 2);
  const hasPage = useApp((state) => Boolean(state.files[index]?.summary.pages[state.page]));
  const isActive = useApp((state) => state.active === index);
  const isDrawing = useApp((state) => state.isDrawingRect);
  const page = useApp((state) => state.page);
  useEffect(() => {
    if (!canvas.current) return;
    const view = new PageCanvas(canvas.current, index);
    const remove = addView(index, view);
    return () => {
      remove();
      view.close();
    };
  }, [index]);
  return (
    <figure class="picture" data-active={hasTwo && isActive}>
      {hasTwo && (
        <figcaption>
          <b>{index === 0 ? 'A' : 'B'}</b> {name}
        </figcaption>
      )}
      <canvas
        ref={canvas}
        tabIndex={0}
        class={isDrawing ? 'is-drawing' : ''}
        role="application"
        aria-roledescription="page picture"
        aria-label={`Page ${page + 1} of ${name}. Arrow keys move over its pixels, Enter shows which calls wrote one.`}
      />
      {!hasPage && (
        <p class="picture-empty">
          {page < 0 ? 'No call of this file paints on a page.' : 'This file has no such page.'}
        </p>
      )}
    </figure>
  );
}

function PixelLine() {
  const { at, value } = useStore(cursor, (state) => state);
  const pixel = useApp((state) => state.pixel);
  const hasRect = useApp((state) => state.isDrawingRect);
  if (hasRect) return <span>Drag a rectangle on the page, or press Esc to leave it.</span>;
  if (!at)
    return (
      <span class="muted">
        {pixel ? `Pixel ${pixel.x}, ${pixel.y} is marked.` : 'Point at a pixel; click it to see which calls wrote it.'}
      </span>
    );
  return (
    <>
      <span class="at">
        x <b>{at.x}</b> y <b>{at.y}</b>
      </span>
      {value?.value && (
        <span class="at" title="The bytes of the pixel as they lie in the band">
          <i class="swatch" style={{ background: cssOfBand(value.value) }} />
          {value.value.length > 1 ? 'B G R' : 'gray'} <b data-test="pixel-bytes">{formatBytes(value.value)}</b>
        </span>
      )}
      {value && value.tag !== null && (
        <span class="at">
          tag <b>{value.tag}</b>
        </span>
      )}
      {value && !value.value && <span class="muted">on no band</span>}
    </>
  );
}

export function PageView() {
  const count = useApp((state) => state.files.length);
  const scale = useApp((state) => state.camera?.scale ?? null);
  return (
    <section class="view" aria-label="Page">
      <div class="pictures">
        {Array.from({ length: count }, (_, index) => (
          <Picture key={index} index={index} />
        ))}
        <Legend />
      </div>
      <div class="pixel-line">
        <PixelLine />
        <span class="zoom-now">
          {scale === null ? 'whole page' : `${scale >= 1 ? scale : Number(scale.toPrecision(3))}×`}
        </span>
      </div>
    </section>
  );
}
