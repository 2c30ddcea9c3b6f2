/** A cell by RFC 4180. A text that a spreadsheet would take for a formula begins with an apostrophe. */
export const csvCell = (value: unknown): string => {
  if (value === null || value === undefined) return '';
  if (typeof value === 'number' || typeof value === 'boolean') return String(value);
  let text = typeof value === 'string' ? value : JSON.stringify(value);
  if (/^\s*[=+\-@\uFF0B\uFF0D\uFF1D\uFF20]|^[\t\r\n]/.test(text)) text = "'" + text;
  return /[",;\r\n\t']/.test(text) ? `"${text.replace(/"/g, '""')}"` : text;
};

export const csvLine = (values: unknown[]): string => values.map(csvCell).join(',') + '\r\n';

/** Copies also where the page may not use the clipboard interface. @returns whether it worked. */
export async function copyText(text: string): Promise<boolean> {
  try {
    await navigator.clipboard.writeText(text);
    return true;
  } catch {
    const fill = (event: ClipboardEvent): void => {
      event.clipboardData?.setData('text/plain', text);
      event.preventDefault();
    };
    document.addEventListener('copy', fill, {once: true});
    const copied = document.execCommand('copy');
    document.removeEventListener('copy', fill);
    return copied;
  }
}
