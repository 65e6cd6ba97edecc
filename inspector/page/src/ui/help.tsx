// The dialog that lists all keys.
import { useEffect, useRef } from 'preact/hooks';
import { store, useApp } from '../model/state';
import { kKeys } from './keys';

export function Help() {
  const isOpen = useApp((state) => state.isHelpOpen);
  const dialog = useRef<HTMLDialogElement>(null);
  useEffect(() => {
    if (isOpen) dialog.current?.showModal();
    else dialog.current?.close();
  }, [isOpen]);
  return (
    <dialog ref={dialog} class="help" aria-labelledby="help-title" onClose={() => store.set({ isHelpOpen: false })}>
      <header>
        <h2 id="help-title">Keys</h2>
        <button type="button" onClick={() => store.set({ isHelpOpen: false })}>
          Close
        </button>
      </header>
      <div class="help-columns">
        {kKeys.map(({ title, keys }) => (
          <section key={title}>
            <h3>{title}</h3>
            <dl>
              {keys.map(({ shown, what }) => (
                <div key={shown}>
                  <dt>
                    <kbd>{shown}</kbd>
                  </dt>
                  <dd>{what}</dd>
                </div>
              ))}
            </dl>
          </section>
        ))}
      </div>
      <p class="muted">
        On the page: drag to move, turn the wheel to zoom, double-click to zoom in, click to mark a pixel. Tab goes from
        part to part. Keys of one letter do nothing while text is typed.
      </p>
    </dialog>
  );
}
