/** A long work that yields often, at least every millisecond. */
export type Steps<Result = void> = Generator<void, Result, void>;

/** Ends after the tasks that wait now, such as input and drawing. */
const pause = (): Promise<void> =>
  new Promise((resolve) => {
    const channel = new MessageChannel();
    channel.port1.onmessage = () => {
      channel.port1.close();
      resolve();
    };
    channel.port2.postMessage(null);
  });

/**
 * Does the work in slices, so that it blocks neither input nor drawing.
 * @param wanted false ends the work.
 * @param afterSlice called after each slice but the last.
 * @param slice milliseconds; more is sooner done, and less noticed by who types meanwhile if it is below 50.
 * @returns the result, undefined if the work was ended.
 */
export async function inSlices<Result>(
  steps: Steps<Result>,
  wanted: () => boolean,
  afterSlice?: () => void,
  slice = 8,
): Promise<Result | undefined> {
  while (wanted()) {
    const end = performance.now() + slice;
    do {
      const step = steps.next();
      if (step.done) return step.value;
    } while (performance.now() < end);
    afterSlice?.();
    await pause();
  }
  return undefined;
}
