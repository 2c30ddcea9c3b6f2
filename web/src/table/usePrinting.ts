import {options} from 'preact';
import {useEffect, useState} from 'preact/hooks';

/** Whether the page is being printed; then what scrolls is drawn as a whole, as far as the page may grow. */
export function usePrinting(): boolean {
  const [printing, setPrinting] = useState(false);
  useEffect(() => {
    const change = (event: Event): void => {
      // The printout is taken as soon as the listeners have returned.
      const usual = options.debounceRendering;
      options.debounceRendering = (draw) => draw();
      setPrinting(event.type === 'beforeprint');
      options.debounceRendering = usual;
    };
    addEventListener('beforeprint', change);
    addEventListener('afterprint', change);
    return () => {
      removeEventListener('beforeprint', change);
      removeEventListener('afterprint', change);
    };
  }, []);
  return printing;
}
