// Builds the page as one file: script, style and worker are written into inspector.html, which then needs nothing else.
import { defineConfig, type Plugin } from 'vite';

// Puts the script and the style sheet into the page. "</" never occurs in the result, so that no text of the script
// can end its element.
function oneFile(): Plugin {
  return {
    name: 'one-file',
    enforce: 'post',
    generateBundle(_options, bundle) {
      const page = bundle['index.html'];
      if (page?.type !== 'asset') return;
      let html = String(page.source);
      for (const [name, item] of Object.entries(bundle)) {
        if (item.type === 'chunk') {
          const code = item.code.trim().replaceAll('</', '<\\/');
          html = html.replace(/<script type="module"[^>]*><\/script>\s*/, '');
          html = html.replace('</head>', () => `<script type="module">${code}</script>\n  </head>`);
          delete bundle[name];
        } else if (name.endsWith('.css')) {
          html = html.replace(/<link rel="stylesheet"[^>]*>\s*/, '');
          html = html.replace('</head>', () => `<style>${String(item.source).trim()}</style>\n  </head>`);
          delete bundle[name];
        }
      }
      // What fills in module and data looks for this end.
      page.source = html.trim().replace(/<\/body>\s*<\/html>$/, '</body></html>\n');
      page.fileName = 'inspector.html';
    },
  };
}

export default defineConfig({
  base: './',
  esbuild: { jsx: 'automatic', jsxImportSource: 'preact' },
  build: {
    target: 'es2022',
    outDir: '../built',
    emptyOutDir: false,
    cssCodeSplit: false,
    modulePreload: false,
    assetsInlineLimit: 100_000_000,
  },
  worker: { format: 'iife' },
  plugins: [oneFile()],
});
