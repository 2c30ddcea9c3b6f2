import type {PageInfo, Source} from './Source';

/** The page and its documents, as JSON in script elements of this page. */
export class EmbeddedSource implements Source {
  readonly page: PageInfo;
  private readonly elements: HTMLScriptElement[];
  private readonly parsed = new Map<number, unknown>();

  /** @throws Error with one line for the reader. */
  constructor(root: Document) {
    this.page = parse(root.getElementById('norvik-page'), 'The description') as PageInfo;
    this.elements = [...root.querySelectorAll<HTMLScriptElement>('script.norvik-document')];
  }

  document(index: number): unknown {
    if (!this.parsed.has(index)) {
      const name = this.page.documents[index]?.name ?? String(index);
      this.parsed.set(index, parse(this.elements[index], `The document ${name}`));
    }
    return this.parsed.get(index);
  }
}

function parse(element: Element | null | undefined, what: string): unknown {
  if (!element) throw new Error(`${what} is missing in this page.`);
  try {
    return JSON.parse(element.textContent ?? '');
  } catch (error) {
    throw new Error(`${what} in this page cannot be read: ${(error as Error).message}`);
  }
}
