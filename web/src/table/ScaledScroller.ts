const margin = 100_000;

/**
 * Scrolls a content of any height in an element. A browser ends an element at 33,554,428 pixels, so a higher
 * content gets a lower element: small movements are those of the content, pixel by pixel, and a jump, as
 * with the scroll bar, goes to the same fraction of the content.
 *
 * It has the properties of a scrolled element that a virtualizer reads.
 */
export class ScaledScroller {
  /** Some browsers end an element earlier. */
  static readonly highest = 8_000_000;

  scrollTop = 0;
  scrollLeft = 0;
  private elementTop = 0;
  private settling = 0;
  private readonly listeners = new Set<(moving: boolean) => void>();

  constructor(
    private readonly element: HTMLElement,
    private height: number,
  ) {
    element.addEventListener('scroll', this.onScroll, {passive: true});
  }

  get ownerDocument(): Document {
    return this.element.ownerDocument;
  }
  get clientHeight(): number {
    return this.element.clientHeight;
  }
  get clientWidth(): number {
    return this.element.clientWidth;
  }
  get scrollHeight(): number {
    return Math.max(this.height, this.clientHeight);
  }
  get elementHeight(): number {
    return Math.min(this.height, ScaledScroller.highest);
  }
  /** What to add to a place in the content to get its place in the element. */
  get shift(): number {
    return this.elementTop - this.scrollTop;
  }

  resize(height: number): void {
    if (height === this.height) return;
    this.height = height;
    this.move(this.scrollTop);
  }

  scrollTo(top: number): void {
    this.move(top);
    this.notify(false);
  }

  listen(listener: (moving: boolean) => void): () => void {
    this.listeners.add(listener);
    return () => this.listeners.delete(listener);
  }

  stop(): void {
    clearTimeout(this.settling);
    this.element.removeEventListener('scroll', this.onScroll);
  }

  private readonly onScroll = (): void => {
    const top = this.element.scrollTop;
    const moved = top - this.elementTop;
    this.scrollLeft = this.element.scrollLeft;
    this.elementTop = top;
    // Who drags the scroll bar moves by whole pixels of it.
    const small = Math.abs(moved) < this.elementHeight / this.clientHeight / 2;
    this.scrollTop = this.limited(
      small && this.scaled ? this.scrollTop + moved : this.contentTop(top),
    );
    if (this.scaled && this.endsEarly) this.move(this.scrollTop);
    this.notify(true);
    clearTimeout(this.settling);
    this.settling = window.setTimeout(() => {
      if (this.scaled) this.move(this.scrollTop);
      this.notify(false);
    }, 150);
  };

  private get scaled(): boolean {
    return this.height > ScaledScroller.highest;
  }
  /** Whether the element is about to end before its content. */
  private get endsEarly(): boolean {
    const above = this.elementTop;
    const below = this.elementMost - this.elementTop;
    return (
      (above < this.clientHeight && this.scrollTop > above + 1) ||
      (below < this.clientHeight && this.most - this.scrollTop > below + 1)
    );
  }
  private get most(): number {
    return Math.max(0, this.height - this.clientHeight);
  }
  private get elementMost(): number {
    return Math.max(0, this.elementHeight - this.clientHeight);
  }
  private limited(top: number): number {
    return Math.min(Math.max(0, top), this.most);
  }
  private contentTop(elementTop: number): number {
    return this.scaled ? (elementTop / this.elementMost) * this.most : elementTop;
  }

  /** The same fraction, with enough of the element left to go on in small movements. */
  private elementTopFor(top: number): number {
    const even = (top / this.most) * this.elementMost;
    return Math.min(
      Math.max(even, Math.min(top, margin)),
      this.elementMost - Math.min(this.most - top, margin),
    );
  }

  private move(top: number): void {
    this.scrollTop = this.limited(top);
    this.elementTop = Math.round(this.scaled ? this.elementTopFor(this.scrollTop) : this.scrollTop);
    this.element.scrollTop = this.elementTop;
  }

  private notify(moving: boolean): void {
    for (const listener of this.listeners) listener(moving);
  }
}
