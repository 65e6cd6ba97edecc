// What is shown while no file is open.
import { useRef, useState } from 'preact/hooks';
import { openChosen } from '../model/actions';
import { useApp } from '../model/state';

export function OpenScreen() {
  const phase = useApp((state) => state.phase);
  const loading = useApp((state) => state.loading);
  const hasEngine = useApp((state) => state.hasEngine);
  const chooser = useRef<HTMLInputElement>(null);
  const [isOver, setOver] = useState(false);
  if (phase === 'loading') {
    return (
      <main class="open-screen" aria-busy="true">
        <p role="status">{loading}…</p>
      </main>
    );
  }
  return (
    <main
      class="open-screen"
      data-over={isOver}
      onDragOver={(event) => {
        event.preventDefault();
        setOver(true);
      }}
      onDragLeave={() => setOver(false)}
      onDrop={(event) => {
        event.preventDefault();
        setOver(false);
        void openChosen(event.dataTransfer?.files ?? []);
      }}
    >
      <div class="open-box">
        <h2>Open a call file</h2>
        <p>Drop a .qnv file here, or two to compare them. Nothing leaves this computer.</p>
        <input
          ref={chooser}
          id="chooser"
          type="file"
          accept=".qnv"
          multiple
          hidden
          onChange={(event) => {
            void openChosen(event.currentTarget.files ?? []);
            event.currentTarget.value = '';
          }}
        />
        <button type="button" class="primary" disabled={!hasEngine} onClick={() => chooser.current?.click()}>
          Choose files
        </button>
        <p class="muted">
          Files are recorded with <code>qnvtool record</code> or the recorder library.
        </p>
      </div>
    </main>
  );
}
