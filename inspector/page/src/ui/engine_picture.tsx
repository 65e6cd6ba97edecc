// A picture that the engine makes for a call: a brush, a source, glyphs, or what the call changed. Small ones are
// enlarged by whole numbers.
import { useEffect, useRef, useState } from 'preact/hooks';
import { Abandoned, type DrawQuestion } from '../engine/contract';
import { engine } from '../model/actions';
import { sentence } from '../model/format';

interface Props {
  file: number;
  question: DrawQuestion;
  label: string;
  room: number; // CSS pixels, of width and height
}

export function EnginePicture({ file, question, label, room }: Props) {
  const canvas = useRef<HTMLCanvasElement>(null);
  const [size, setSize] = useState<{ width: number; height: number } | null>(null);
  const [error, setError] = useState('');
  const key = JSON.stringify([file, question]);
  useEffect(() => {
    const controller = new AbortController();
    engine
      .draw(file, question, controller.signal)
      .then((pixels) => {
        const element = canvas.current;
        if (controller.signal.aborted || !element) return;
        element.width = pixels.width;
        element.height = pixels.height;
        if (pixels.width > 0 && pixels.height > 0) {
          element.getContext('2d')?.putImageData(new ImageData(pixels.data, pixels.width, pixels.height), 0, 0);
        }
        setError('');
        setSize({ width: pixels.width, height: pixels.height });
      })
      .catch((reason: unknown) => {
        if (reason instanceof Abandoned || controller.signal.aborted) return;
        setError(sentence(reason instanceof Error ? reason.message : String(reason)));
      });
    return () => controller.abort();
  }, [key]);
  const fitting = size ? Math.min(room / Math.max(1, size.width), room / Math.max(1, size.height)) : 1;
  const factor = fitting >= 1 ? Math.min(8, Math.floor(fitting)) : fitting;
  return (
    <figure class="engine-picture">
      <canvas
        ref={canvas}
        role="img"
        aria-label={label}
        hidden={error !== '' || size?.width === 0}
        style={size ? { width: `${size.width * factor}px`, height: `${size.height * factor}px` } : {}}
        data-small={factor >= 1}
      />
      {error !== '' && <p class="muted">{error}</p>}
      <figcaption>
        {label}
        {size && size.width > 0 && (
          <span class="muted">
            {' '}
            {size.width} × {size.height}
          </span>
        )}
      </figcaption>
    </figure>
  );
}
